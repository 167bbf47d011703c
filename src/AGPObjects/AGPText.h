// A text element, kept with all its blanks and line feeds; it may hold one phone number.
#pragma once

#include "AGPCommonBase.h"

class AGPText : public AGPCommonBase {
public:
    AGPText();
    AGPText(const AGPText&) = delete;
    AGPText& operator=(const AGPText&) = delete;
    ~AGPText() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_Text; }
    bool addAttribute(std::string& name, std::string& value) override;
    bool addChild(AGPCommonBase& child) override;
    bool isValid() override { return isValidContainer(); }
    void initializeElement() override;
    // The phone number's own presentation once it was handed the text, the text otherwise.
    std::string getContent() override;

    bool isValidContainer() { return isCountValidAGPIppPhoneNumber(); }
    bool isCountValidAGPIppPhoneNumber() { return mIppPhoneNumberCount.isCountValid(); }

private:
    bool addAGPIppPhoneNumber(AGPCommonBase& child) { return addCountedChild(mIppPhoneNumberCount, child); }

    AGPChildCount mIppPhoneNumberCount;
    bool mPhoneNumberSet;
};
