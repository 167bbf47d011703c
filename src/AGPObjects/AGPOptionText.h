// One text of a list or choice-group option, possibly greyed.
#pragma once

#include <cstdint>

#include "AGPCommonBase.h"

class AGPIppPhoneNumber;

class AGPOptionText : public AGPCommonBase {
public:
    enum AGPState : std::int32_t { STATE_NORMAL = 0, GRAY = 1 };

    AGPOptionText();
    AGPOptionText(const AGPOptionText&) = delete;
    AGPOptionText& operator=(const AGPOptionText&) = delete;
    ~AGPOptionText() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_OptionText; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    // The phone number's content once a phone number child was given the text, else the text.
    std::string getContent() override;
    bool isValid() override { return mIppPhoneNumberCount.isCountValid(); }
    void initializeElement() override;

    AGPState getAGPState() const { return mState; }
    void setAGPState(AGPState state) { mState = state; }
    static AGPState parseAGPState(const std::string& text);

    bool hasPhoneNumber() const { return mHasPhoneNumber; }
    // The phone number child, or null.
    AGPIppPhoneNumber* getPhoneNumber();

private:
    AGPChildCount mIppPhoneNumberCount;
    AGPState mState;
    bool mHasPhoneNumber;
};
