// A phone number inside a text, shown as its phone-book contact: name, number or both, and a picture.
#include "AGPIppPhoneNumber.h"

#include <string_view>

#include "AGPPhoneletManager.h"

using namespace std::string_view_literals;

AGPIppPhoneNumber::AGPIppPhoneNumber()
    : mAltTextCount(0, 1), mImageType(IMAGE_NONE), mNumberType(NUMBER), mSeparator(", "), mFound(false) {
    registerElement();
}

AGPIppPhoneNumber::~AGPIppPhoneNumber() {
    unregisterElement();
}

bool AGPIppPhoneNumber::addChild(AGPCommonBase& child) {
    if (child.getAGPObjectType() == AGPObjectTypeInfo::ti_AltText) {
        return addCountedChild(mAltTextCount, child);
    }
    return false;
}

bool AGPIppPhoneNumber::addAttribute(std::string& name, std::string& value) {
    if (name == "NumberType"sv) {
        mNumberType = value == "NAME" ? NAME : value == "BOTH" ? BOTH : NUMBER;
        return true;
    }
    if (name == "ImageType"sv) {
        mImageType = value == "PHONETYPE" ? PHONETYPE : value == "PICTURECLIP" ? PICTURECLIP : IMAGE_NONE;
        return true;
    }
    return false;
}

void AGPIppPhoneNumber::setPhoneNumber(std::string number) {
    const char* const blanks = " \t\n";
    const size_t first = number.find_first_not_of(blanks);
    mNumber =
        first == std::string::npos ? "" : number.substr(first, number.find_last_not_of(blanks) - first + 1);
    AGPPhonebookHandler* phonebook = AGPPhoneletManager::findAGPPhonebookHandler();
    mFound = phonebook != nullptr && !mNumber.empty() && phonebook->findContactByNumber(mNumber, mContact);
    if (mFound) {
        mDisplayName = mContact.surname + ", " + mContact.firstName;
    }
}

std::string AGPIppPhoneNumber::getContent() {
    if (!mFound) {
        const std::string alternative = getAltText();
        return alternative.empty() ? mNumber : alternative;
    }
    switch (mNumberType) {
    case NAME:
        return mDisplayName;
    case BOTH:
        return mDisplayName + mSeparator + mNumber;
    default:
        return mNumber;
    }
}

std::string AGPIppPhoneNumber::getImagePath() {
    switch (mImageType) {
    case PHONETYPE:
        return mContact.contactTypeIconPath;
    case PICTURECLIP:
        return mContact.picturePath;
    default:
        return "";
    }
}

std::string AGPIppPhoneNumber::getAltText() {
    AGPCommonBase* alternative = getChildByType(AGPObjectTypeInfo::ti_AltText);
    return alternative != nullptr ? alternative->getContent() : "";
}
