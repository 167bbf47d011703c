// The optional outer root of a document, wrapping its one IppDisplay.
#pragma once

#include "AGPCommonBase.h"

class AGPIppPhone : public AGPCommonBase {
public:
    AGPIppPhone();
    AGPIppPhone(const AGPIppPhone&) = delete;
    AGPIppPhone& operator=(const AGPIppPhone&) = delete;
    ~AGPIppPhone() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppPhone; }
    bool addChild(AGPCommonBase& child) override;
    bool isValid() override { return mIppDisplayCount.isCountValid(); }

private:
    AGPChildCount mIppDisplayCount;
};
