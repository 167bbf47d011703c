// Text colour of a list or option.
#pragma once

#include "AGPColor.h"

class AGPTColor : public AGPColor<AGPObjectTypeInfo::ti_TColor> {
public:
    using AGPColor::AGPColor;

    // A new AGPTColor holding a new colour type made from `text`; the caller owns it.
    static AGPTColor* parseAGPTColor(std::string& text) {
        return new AGPTColor(AGPcolourType::parseAGPcolourType(text));
    }
};
