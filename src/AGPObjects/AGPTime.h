// A time text; as a child of a date field its content holds the time.
#pragma once

#include "AGPTextValue.h"

class AGPTime : public AGPTextValue<AGPObjectTypeInfo::ti_Time> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPTime holding `text`; the caller owns it.
    static AGPTime* parseAGPTime(std::string& text) { return new AGPTime(text); }
};
