// Turns chosen menu entries into messages of the type each entry carries as its identifier.
#pragma once

#include "AGPCommandListener.h"

class AGPMenuCommandListener : public AGPCommandListener {
public:
    void commandAction(DisplayAPI::Command* command, DisplayAPI::Displayable* displayable) override;
};
