// Text colour of a selected list entry.
#pragma once

#include "AGPColor.h"

class AGPSTColor : public AGPColor<AGPObjectTypeInfo::ti_STColor> {
public:
    using AGPColor::AGPColor;

    // A new AGPSTColor holding a new colour type made from `text`; the caller owns it.
    static AGPSTColor* parseAGPSTColor(std::string& text) {
        return new AGPSTColor(AGPcolourType::parseAGPcolourType(text));
    }
};
