// Base of the colour values: an owned colour type, compared by its text.
#pragma once

#include "AGPCommonBase.h"
#include "AGPcolourType.h"

// Abstract: the concrete colour classes give the type and register themselves.
class AGPColorBase : public AGPCommonBase {
public:
    AGPColorBase() : mColourType(nullptr) {}
    explicit AGPColorBase(AGPcolourType* colourType) : mColourType(colourType) {}
    AGPColorBase(const AGPColorBase&) = delete;
    AGPColorBase& operator=(const AGPColorBase&) = delete;
    ~AGPColorBase() override { delete mColourType; }

    // Equal when both have no colour type, or both have one with the same text.
    virtual bool operator==(const AGPColorBase& other) const {
        if (mColourType == nullptr || other.mColourType == nullptr) {
            return mColourType == other.mColourType;
        }
        return *mColourType == *other.mColourType;
    }
    virtual bool operator!=(const AGPColorBase& other) const { return !(*this == other); }

    AGPcolourType* getColourType() const { return mColourType; }

protected:
    AGPcolourType* mColourType;
};
