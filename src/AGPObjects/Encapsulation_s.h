// A plain text element; as the "Number" child of an action its content holds the number to use.
#pragma once

#include <string>

#include "AGPCommonBase.h"

class Encapsulation_s : public AGPCommonBase {
public:
    Encapsulation_s() { registerElement(); }
    explicit Encapsulation_s(const std::string& text) : mValueText(text) { registerElement(); }
    Encapsulation_s(const Encapsulation_s&) = delete;
    Encapsulation_s& operator=(const Encapsulation_s&) = delete;
    ~Encapsulation_s() override { unregisterElement(); }

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_Encapsulation_s; }
    const std::string& getValueText() const { return mValueText; }

private:
    std::string mValueText;
};
