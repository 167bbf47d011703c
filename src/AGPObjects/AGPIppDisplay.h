// The root element of every document: between one and five screens.
#pragma once

#include <cstdint>

#include "AGPCommonBase.h"

class AGPIppDisplay : public AGPCommonBase {
public:
    AGPIppDisplay();
    AGPIppDisplay(const AGPIppDisplay&) = delete;
    AGPIppDisplay& operator=(const AGPIppDisplay&) = delete;
    ~AGPIppDisplay() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppDisplay; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return isValidContainer(); }

    bool isValidContainer() { return isCountValidAGPIppScreen(); }
    bool isCountValidAGPIppScreen() { return mIppScreenCount.isCountValid(); }

    // -1 when not given.
    std::int32_t getAGPInitialScreen() const { return mInitialScreen; }
    std::int32_t getAGPUpdateScreen() const { return mUpdateScreen; }

private:
    bool addAGPIppScreen(AGPCommonBase& child) { return addCountedChild(mIppScreenCount, child); }

    AGPChildCount mIppScreenCount;
    std::int32_t mInitialScreen;
    std::int32_t mUpdateScreen;
};
