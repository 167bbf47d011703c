// One text of a list or choice-group option, possibly greyed.
#include "AGPOptionText.h"

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
    if (name == "State") {
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

// The phone-number element does not exist yet, so no child of that type can be present; once it
// does, it is handed this text as its number here and then supplies the content.
void AGPOptionText::initializeElement() {
    mHasPhoneNumber = getChildByType(AGPObjectTypeInfo::ti_IppPhoneNumber) != nullptr;
}
