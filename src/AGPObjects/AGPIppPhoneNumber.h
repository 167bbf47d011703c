// A phone number inside a text, shown as its phone-book contact: name, number or both, and a picture.
#pragma once

#include <cstdint>
#include <string>

#include "AGPCommonBase.h"
#include "AGPPhonebookHandler.h"

class AGPIppPhoneNumber : public AGPCommonBase {
public:
    enum AGPImageType : std::int32_t { IMAGE_NONE = 0, PHONETYPE = 1, PICTURECLIP = 2 };
    enum AGPNumberType : std::int32_t { NUMBER = 0, NAME = 1, BOTH = 2 };

    AGPIppPhoneNumber();
    AGPIppPhoneNumber(const AGPIppPhoneNumber&) = delete;
    AGPIppPhoneNumber& operator=(const AGPIppPhoneNumber&) = delete;
    ~AGPIppPhoneNumber() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppPhoneNumber; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return mAltTextCount.isCountValid(); }
    // What the enclosing text shows: the contact's name, the number or both.
    std::string getContent() override;

    // Called by the enclosing text with its content; looks the number up in the phone book.
    void setPhoneNumber(std::string number);
    // The number-type icon or the contact's picture, by ImageType; "" for none.
    std::string getImagePath();
    std::string getAltText();
    void setSeparator(const std::string& separator) { mSeparator = separator; }

    AGPImageType getAGPImageType() const { return mImageType; }
    AGPNumberType getAGPNumberType() const { return mNumberType; }
    bool isFound() const { return mFound; }

private:
    AGPChildCount mAltTextCount;
    AGPImageType mImageType;
    AGPNumberType mNumberType;
    std::string mNumber;
    std::string mDisplayName;
    AGPPhonebookHandler::PhonebookContact mContact;
    std::string mSeparator;
    bool mFound;
};
