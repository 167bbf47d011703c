// A key and value that the screen adds to its requests without showing them.
#include "AGPIppHidden.h"

AGPIppHidden::AGPIppHidden()
    : mValueCount(0, 1), mType(TYPE_NOT_GIVEN), mTypeGiven(false), mKey(nullptr), mKeyGiven(false) {
    registerElement();
}
AGPIppHidden::~AGPIppHidden() {
    unregisterElement();
}
bool AGPIppHidden::addChild(AGPCommonBase&) {
    return false;
}
bool AGPIppHidden::addAttribute(std::string&, std::string&) {
    return false;
}
bool AGPIppHidden::isValid() {
    return false;
}
