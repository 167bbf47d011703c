// The beep that a PLAYTONE action plays: one of three lengths.
#include "AGPIppTone.h"

AGPIppTone::AGPIppTone() : mLength(LENGTH_NOT_GIVEN), mLengthGiven(false) {
    registerElement();
}

AGPIppTone::~AGPIppTone() {
    unregisterElement();
}

bool AGPIppTone::addAttribute(std::string& name, std::string& value) {
    if (name != "Length") {
        return false;
    }
    if (value == "SHORT") {
        mLength = SHORT;
    } else if (value == "STANDARD") {
        mLength = STANDARD;
    } else if (value == "LONG") {
        mLength = LONG;
    } else {
        return false;
    }
    mLengthGiven = true;
    return true;
}
