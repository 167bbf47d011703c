// A colour text, kept as written; no colour names are defined.
#pragma once

#include "AGPTextValue.h"

class AGPcolourType : public AGPTextValue<AGPObjectTypeInfo::ti_colourType> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPcolourType holding `text`; the caller owns it.
    static AGPcolourType* parseAGPcolourType(std::string& text) { return new AGPcolourType(text); }
};
