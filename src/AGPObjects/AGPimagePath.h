// An image path text.
#pragma once

#include "AGPTextValue.h"

class AGPimagePath : public AGPTextValue<AGPObjectTypeInfo::ti_imagePath> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPimagePath holding `text`; the caller owns it.
    static AGPimagePath* parseAGPimagePath(std::string& text) { return new AGPimagePath(text); }
};
