// The key under which a date field sends its date.
#pragma once

#include "AGPTextValue.h"

class AGPDateKey : public AGPTextValue<AGPObjectTypeInfo::ti_DateKey> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPDateKey holding `text`; the caller owns it.
    static AGPDateKey* parseAGPDateKey(std::string& text) { return new AGPDateKey(text); }
};
