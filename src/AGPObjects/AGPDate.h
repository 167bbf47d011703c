// A date text; as a child of a date field its content holds the date.
#pragma once

#include "AGPTextValue.h"

class AGPDate : public AGPTextValue<AGPObjectTypeInfo::ti_Date> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPDate holding `text`; the caller owns it.
    static AGPDate* parseAGPDate(std::string& text) { return new AGPDate(text); }
};
