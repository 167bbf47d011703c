// A key and value that the screen adds to its requests without showing them.
#include "AGPIppHidden.h"

#include <string_view>

#include "AGPKey.h"
#include "AGPObjectPool.h"

using namespace std::string_view_literals;

AGPIppHidden::AGPIppHidden()
    : mValueCount(0, 1), mType(TYPE_NOT_GIVEN), mTypeGiven(false), mKey(new AGPKey("null")),
      mKeyGiven(false) {
    registerElement();
}

AGPIppHidden::~AGPIppHidden() {
    unregisterElement();
    delete mKey;
}

bool AGPIppHidden::addChild(AGPCommonBase& child) {
    if (child.getAGPObjectType() == AGPObjectTypeInfo::ti_Value) {
        return addCountedChild(mValueCount, child);
    }
    return false;
}

bool AGPIppHidden::addAttribute(std::string& name, std::string& value) {
    if (name == "Type"sv) {
        mType = value == "VALUE"         ? VALUE
                : value == "PHONENUMBER" ? PHONENUMBER
                : value == "IPADDRESS"   ? IPADDRESS
                                         : TYPE_NOT_GIVEN;
        mTypeGiven = mType != TYPE_NOT_GIVEN;
        return mTypeGiven;
    }
    if (name == "Key"sv) {
        delete mKey;
        mKey = AGPKey::parseAGPKey(value);
        // Before the pool exists its fallback object cannot be compared; its text stands in for it.
        mKeyGiven = !AGPObjectPool::isPooled(*mKey, AGPObjectPool::getAGPKey_PARSE_FAILED());
        return mKeyGiven;
    }
    return false;
}

bool AGPIppHidden::isValid() {
    return mTypeGiven && mKeyGiven && isCountValidValue();
}
