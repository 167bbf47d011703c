// A phone function run when its screen is shown or its command is triggered.
#include "AGPIppAction.h"

AGPIppAction::AGPIppAction()
    : mNumberCount(0, 1), mIppToneCount(0, 1), mType(TYPE_NOT_GIVEN), mFocus(FOCUS_YES), mTypeGiven(false),
      mDone(false) {
    registerElement();
}
AGPIppAction::~AGPIppAction() {
    unregisterElement();
}
bool AGPIppAction::addChild(AGPCommonBase&) {
    return false;
}
bool AGPIppAction::addAttribute(std::string&, std::string&) {
    return false;
}
bool AGPIppAction::isValid() {
    return false;
}
void AGPIppAction::invoke() {}
