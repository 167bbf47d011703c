// The root element of every document: between one and five screens.
#include "AGPIppDisplay.h"

AGPIppDisplay::AGPIppDisplay() : mIppScreenCount(1, 5), mInitialScreen(-1), mUpdateScreen(-1) {
    registerElement();
}
AGPIppDisplay::~AGPIppDisplay() {
    unregisterElement();
}
bool AGPIppDisplay::addChild(AGPCommonBase&) {
    return false;
}
bool AGPIppDisplay::addAttribute(std::string&, std::string&) {
    return false;
}
