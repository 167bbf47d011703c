// An attribute key: the name under which a value is sent to the server.
#pragma once

#include "AGPTextValue.h"

class AGPKey : public AGPTextValue<AGPObjectTypeInfo::ti_Key> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPKey holding `text`; the caller owns it.
    static AGPKey* parseAGPKey(std::string& text) {
        return new AGPKey(text.empty() ? std::string("null") : text);
    }
};
