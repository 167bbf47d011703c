// The number of a screen, by which commands and lists name the screen to show.
#pragma once

#include <cstdint>

#include "AGPCommonBase.h"

class AGPScreenID : public AGPCommonBase {
public:
    AGPScreenID() : mScreenID(0) { registerElement(); }
    AGPScreenID(const AGPScreenID&) = delete;
    AGPScreenID& operator=(const AGPScreenID&) = delete;
    ~AGPScreenID() override { unregisterElement(); }

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_ScreenID; }
    // Takes a number of 0 or more; anything else is refused and the number stays as it was.
    bool addContent(std::string& text) override;
    std::int32_t getScreenID() const { return mScreenID; }

private:
    std::int32_t mScreenID;
};
