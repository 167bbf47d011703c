// The text of a table cell's line, possibly a phone number.
#pragma once

#include <cstdint>
#include <string>

#include "AGPCommonBase.h"

// Lives and dies with its document tree on its queue's thread, like every element.
class AGPCellText : public AGPCommonBase {
public:
    enum AGPState : std::int32_t { NORMAL = 0, GRAY = 1 };

    AGPCellText();
    AGPCellText(const AGPCellText&) = delete;
    AGPCellText& operator=(const AGPCellText&) = delete;
    ~AGPCellText() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_CellText; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    // The phone number's text once the number took this text over; before, the own text.
    std::string getContent() override;
    bool isValid() override { return mPhoneNumberCount.isCountValid(); }
    // Hands the own text to the phone number child, if there is one.
    void initializeElement() override;

    AGPState getAGPState() const { return mState; }
    bool isPhoneNumberSet() const { return mPhoneNumberSet; }

private:
    AGPChildCount mPhoneNumberCount;
    AGPState mState;
    bool mPhoneNumberSet;
};
