// The text of a table cell's line, possibly a phone number.
#include "AGPCellText.h"

#include <string_view>

#include "AGPIppPhoneNumber.h"

using namespace std::string_view_literals;

AGPCellText::AGPCellText() : mPhoneNumberCount(0, 1), mState(NORMAL), mPhoneNumberSet(false) {
    registerElement();
}

AGPCellText::~AGPCellText() {
    unregisterElement();
}

bool AGPCellText::addChild(AGPCommonBase& child) {
    if (child.getAGPObjectType() == AGPObjectTypeInfo::ti_IppPhoneNumber) {
        return addCountedChild(mPhoneNumberCount, child);
    }
    return false;
}

bool AGPCellText::addAttribute(std::string& name, std::string& value) {
    if (name == "State"sv) {
        mState = value == "GRAY" ? GRAY : NORMAL;
        return true;
    }
    return false;
}

// Children are initialised first, so the phone number is ready to take the cell's text as its
// number; from then on it supplies the content (the contact's name, or what its NumberType asks).
void AGPCellText::initializeElement() {
    auto* number = static_cast<AGPIppPhoneNumber*>(getChildByType(AGPObjectTypeInfo::ti_IppPhoneNumber));
    if (number == nullptr) {
        return;
    }
    number->setPhoneNumber(mContent);
    mPhoneNumberSet = true;
}

std::string AGPCellText::getContent() {
    if (mPhoneNumberSet) {
        if (AGPCommonBase* number = getChildByType(AGPObjectTypeInfo::ti_IppPhoneNumber)) {
            return number->getContent();
        }
    }
    return mContent;
}
