// One text of a list or choice-group option, possibly greyed.
#include "AGPOptionText.h"

#include <string_view>

#include "AGPIppPhoneNumber.h"

using namespace std::string_view_literals;

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPOptionText.cpp"

AGPOptionText::AGPOptionText() : mIppPhoneNumberCount(0, 1), mState(STATE_NORMAL), mHasPhoneNumber(false) {
    registerElement();
}

AGPOptionText::~AGPOptionText() {
    unregisterElement();
}

bool AGPOptionText::addChild(AGPCommonBase& child) {
    if (child.getAGPObjectType() == AGPObjectTypeInfo::ti_IppPhoneNumber) {
        return addCountedChild(mIppPhoneNumberCount, child);
    }
    return false;
}

bool AGPOptionText::addAttribute(std::string& name, std::string& value) {
    if (name == "State"sv) {
        mState = parseAGPState(value);
        return true;
    }
    return false;
}

AGPOptionText::AGPState AGPOptionText::parseAGPState(const std::string& text) {
    return text == "GRAY" ? GRAY : STATE_NORMAL;
}

std::string AGPOptionText::getContent() {
    if (mHasPhoneNumber) {
        AGPCommonBase* number = getChildByType(AGPObjectTypeInfo::ti_IppPhoneNumber);
        if (number != nullptr) {
            return number->getContent();
        }
    }
    return mContent;
}

// Children are initialised first, so the phone number is ready to take the text as its number;
// from then on it supplies the content.
void AGPOptionText::initializeElement() {
    AGPIppPhoneNumber* number = getPhoneNumber();
    if (number != nullptr) {
        number->setPhoneNumber(mContent);
    }
    mHasPhoneNumber = number != nullptr;
}

AGPIppPhoneNumber* AGPOptionText::getPhoneNumber() {
    return static_cast<AGPIppPhoneNumber*>(getChildByType(AGPObjectTypeInfo::ti_IppPhoneNumber));
}
