// Shared shape of the value classes that hold one text and compare by it (Key, Value, Default, ...).
#pragma once

#include <string>

#include "AGPCommonBase.h"

// Each value class derives from this with its own type. The most derived class adds nothing
// that needs registering, so the registration is done here where the type is known.
template <AGPObjectTypeInfo::AGPObjectType Type> class AGPTextValue : public AGPCommonBase {
public:
    AGPTextValue() { registerElement(); }
    explicit AGPTextValue(const std::string& text) : mValueText(text) { registerElement(); }
    // A copy is a new element with its own identifier.
    AGPTextValue(const AGPTextValue& other) : AGPCommonBase(), mValueText(other.mValueText) {
        registerElement();
    }
    AGPTextValue& operator=(const AGPTextValue&) = delete;
    ~AGPTextValue() override { unregisterElement(); }

    AGPObjectType getAGPObjectType() override { return Type; }

    const std::string& getValueText() const { return mValueText; }
    bool operator==(const AGPTextValue& other) const { return mValueText == other.mValueText; }
    bool operator!=(const AGPTextValue& other) const { return mValueText != other.mValueText; }

protected:
    std::string mValueText;
};
