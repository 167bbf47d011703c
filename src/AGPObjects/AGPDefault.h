// Where the initial text of a text box or field comes from (NULL, TEXT, PHONENUMBER, ...).
#pragma once

#include "AGPTextValue.h"

class AGPDefault : public AGPTextValue<AGPObjectTypeInfo::ti_Default> {
public:
    using AGPTextValue::AGPTextValue;

    // A new AGPDefault holding `text`; the caller owns it.
    static AGPDefault* parseAGPDefault(std::string& text) { return new AGPDefault(text); }
};
