// The beep that a PLAYTONE action plays: one of three lengths.
#pragma once

#include <cstdint>

#include "AGPCommonBase.h"

class AGPIppTone : public AGPCommonBase {
public:
    enum AGPLength : std::int32_t { SHORT = 0, STANDARD = 1, LONG = 2, LENGTH_NOT_GIVEN = 3 };

    AGPIppTone();
    AGPIppTone(const AGPIppTone&) = delete;
    AGPIppTone& operator=(const AGPIppTone&) = delete;
    ~AGPIppTone() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppTone; }
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return mLengthGiven; }

    AGPLength getAGPLength() const { return mLength; }

private:
    AGPLength mLength;
    bool mLengthGiven;
};
