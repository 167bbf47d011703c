// The time value type of a gauge's initial and maximum values.
#pragma once

#include "AGPTextValue.h"

class AGPgaugeTimeType : public AGPTextValue<AGPObjectTypeInfo::ti_gaugeTimeType> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPgaugeTimeType holding `text`; the caller owns it.
    static AGPgaugeTimeType* parseAGPgaugeTimeType(std::string& text) { return new AGPgaugeTimeType(text); }
};
