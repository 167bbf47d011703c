// A key and value that the screen adds to its requests without showing them.
#pragma once

#include <cstdint>

#include "AGPCommonBase.h"

class AGPKey;

class AGPIppHidden : public AGPCommonBase {
public:
    enum AGPType : std::int32_t { VALUE = 0, PHONENUMBER = 1, IPADDRESS = 2, TYPE_NOT_GIVEN = 3 };

    AGPIppHidden();
    AGPIppHidden(const AGPIppHidden&) = delete;
    AGPIppHidden& operator=(const AGPIppHidden&) = delete;
    ~AGPIppHidden() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppHidden; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override;

    AGPType getAGPType() const { return mType; }
    AGPKey* getAGPKey() const { return mKey; }
    bool isCountValidValue() { return mValueCount.isCountValid(); }

private:
    AGPChildCount mValueCount;
    AGPType mType;
    bool mTypeGiven;
    AGPKey* mKey;
    bool mKeyGiven;
};
