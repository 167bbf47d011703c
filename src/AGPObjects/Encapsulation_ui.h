// A plain unsigned number element; no other element accepts it as a child.
#pragma once

#include <cstdint>

#include "AGPCommonBase.h"

class Encapsulation_ui : public AGPCommonBase {
public:
    Encapsulation_ui() : mValueNumber(0) { registerElement(); }
    explicit Encapsulation_ui(unsigned int& number) : mValueNumber(number) { registerElement(); }
    Encapsulation_ui(const Encapsulation_ui&) = delete;
    Encapsulation_ui& operator=(const Encapsulation_ui&) = delete;
    ~Encapsulation_ui() override { unregisterElement(); }

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_Encapsulation_ui; }
    std::uint32_t getValueNumber() const { return mValueNumber; }

private:
    std::uint32_t mValueNumber;
};
