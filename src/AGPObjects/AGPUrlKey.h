// The key under which a key element sends the number typed, given as an attribute.
#pragma once

#include "AGPTextValue.h"

class AGPUrlKey : public AGPTextValue<AGPObjectTypeInfo::ti_UrlKey> {
public:
    using AGPTextValue::AGPTextValue;

    // The key text, never the character data: a UrlKey written as an element carries no content.
    std::string getContent() override { return mValueText; }

    // A new AGPUrlKey holding `text`; the caller owns it.
    static AGPUrlKey* parseAGPUrlKey(std::string& text) { return new AGPUrlKey(text); }
};
