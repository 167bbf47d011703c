// Foreground colour of a list or option.
#pragma once

#include "AGPColor.h"

class AGPFColor : public AGPColor<AGPObjectTypeInfo::ti_FColor> {
public:
    using AGPColor::AGPColor;

    // A new AGPFColor holding a new colour type made from `text`; the caller owns it.
    static AGPFColor* parseAGPFColor(std::string& text) {
        return new AGPFColor(AGPcolourType::parseAGPcolourType(text));
    }
};
