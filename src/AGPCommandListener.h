// Turns commands triggered on widgets and timers into messages on the element's queue.
#pragma once

#include "display/CommandListener.h"

class AGPCommandListener : public DisplayAPI::CommandListener {
public:
    ~AGPCommandListener() override = default;
    void commandAction(DisplayAPI::Command* command, DisplayAPI::Displayable* displayable) override;
};
