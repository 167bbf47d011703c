// Foreground colour of a selected list entry.
#pragma once

#include "AGPColor.h"

class AGPSFColor : public AGPColor<AGPObjectTypeInfo::ti_SFColor> {
public:
    using AGPColor::AGPColor;

    // A new AGPSFColor holding a new colour type made from `text`; the caller owns it.
    static AGPSFColor* parseAGPSFColor(std::string& text) {
        return new AGPSFColor(AGPcolourType::parseAGPcolourType(text));
    }
};
