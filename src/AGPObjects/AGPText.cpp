// A text element, kept with all its blanks and line feeds; it may hold one phone number.
#include "AGPText.h"

AGPText::AGPText() : mIppPhoneNumberCount(0, 1), mPhoneNumberSet(false) {
    registerElement();
}

AGPText::~AGPText() {
    unregisterElement();
}

bool AGPText::addAttribute(std::string&, std::string&) {
    return false;
}

bool AGPText::addChild(AGPCommonBase& child) {
    if (child.getAGPObjectType() == AGPObjectTypeInfo::ti_IppPhoneNumber) {
        return addAGPIppPhoneNumber(child);
    }
    return false;
}

// The phone-number element takes the text as its number when it is initialised; until the
// phone-number element exists the factory creates none, so there is nothing to hand over.
void AGPText::initializeElement() {}

std::string AGPText::getContent() {
    AGPCommonBase* phoneNumber = getChildByType(AGPObjectTypeInfo::ti_IppPhoneNumber);
    if (mPhoneNumberSet && phoneNumber != nullptr) {
        return phoneNumber->getContent();
    }
    return mContent;
}
