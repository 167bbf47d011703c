// The key under which a date field sends its time.
#pragma once

#include "AGPTextValue.h"

class AGPTimeKey : public AGPTextValue<AGPObjectTypeInfo::ti_TimeKey> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPTimeKey holding `text`; the caller owns it.
    static AGPTimeKey* parseAGPTimeKey(std::string& text) { return new AGPTimeKey(text); }
};
