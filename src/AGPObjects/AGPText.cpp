// A text element, kept with all its blanks and line feeds; it may hold one phone number.
#include "AGPText.h"

#include "AGPIppPhoneNumber.h"

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

// Children are initialised first, so the phone number is ready to take the text as its number.
void AGPText::initializeElement() {
    auto* phoneNumber = static_cast<AGPIppPhoneNumber*>(getChildByType(AGPObjectTypeInfo::ti_IppPhoneNumber));
    if (phoneNumber != nullptr) {
        phoneNumber->setPhoneNumber(mContent);
        mPhoneNumberSet = true;
    }
}

std::string AGPText::getContent() {
    AGPCommonBase* phoneNumber = getChildByType(AGPObjectTypeInfo::ti_IppPhoneNumber);
    if (mPhoneNumberSet && phoneNumber != nullptr) {
        return phoneNumber->getContent();
    }
    return mContent;
}
