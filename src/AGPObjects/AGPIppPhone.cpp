// The optional outer root of a document, wrapping its one IppDisplay.
#include "AGPIppPhone.h"

AGPIppPhone::AGPIppPhone() : mIppDisplayCount(1, 1) {
    registerElement();
}

AGPIppPhone::~AGPIppPhone() {
    unregisterElement();
}

bool AGPIppPhone::addChild(AGPCommonBase& child) {
    if (child.getAGPObjectType() == AGPObjectTypeInfo::ti_IppDisplay) {
        return addCountedChild(mIppDisplayCount, child);
    }
    return false;
}
