// An attribute value, or the content of a hidden value sent with a request.
#pragma once

#include "AGPTextValue.h"

class AGPValue : public AGPTextValue<AGPObjectTypeInfo::ti_Value> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPValue holding `text`; the caller owns it.
    static AGPValue* parseAGPValue(std::string& text) { return new AGPValue(text); }
};
