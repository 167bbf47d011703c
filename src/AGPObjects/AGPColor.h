// Shared shape of the four colour classes (FColor, SFColor, STColor, TColor).
#pragma once

#include "AGPColorBase.h"

template <AGPObjectTypeInfo::AGPObjectType Type> class AGPColor : public AGPColorBase {
public:
    AGPColor() { registerElement(); }
    // Takes ownership of `colourType`.
    explicit AGPColor(AGPcolourType* colourType) : AGPColorBase(colourType) { registerElement(); }
    ~AGPColor() override { unregisterElement(); }

    AGPObjectType getAGPObjectType() override { return Type; }
};
