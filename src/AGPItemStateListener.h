// Turns finished edits of form items into messages for the item's element.
#pragma once

#include "display/ItemStateListener.h"

class AGPItemStateListener : public DisplayAPI::ItemStateListener {
public:
    void itemStateChanged(DisplayAPI::Item* item) override;
    ~AGPItemStateListener() override = default;
};
