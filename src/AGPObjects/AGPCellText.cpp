// The text of a table cell's line, possibly a phone number.
#include "AGPCellText.h"

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
    if (name == "State") {
        mState = value == "GRAY" ? GRAY : NORMAL;
        return true;
    }
    return false;
}

// Hook for phone numbers: the phone number element takes the cell's text as its number (it
// shows and dials it); until that element exists in the document model the child is never
// created and the cell shows its own text.
void AGPCellText::initializeElement() {
    AGPCommonBase* number = getChildByType(AGPObjectTypeInfo::ti_IppPhoneNumber);
    if (number == nullptr) {
        return;
    }
    std::string text = mContent;
    number->addContent(text);
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
