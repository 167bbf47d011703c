// A time zone text.
#pragma once

#include "AGPTextValue.h"

class AGPtimeZoneType : public AGPTextValue<AGPObjectTypeInfo::ti_timeZoneType> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPtimeZoneType holding `text`; the caller owns it.
    static AGPtimeZoneType* parseAGPtimeZoneType(std::string& text) { return new AGPtimeZoneType(text); }
};
