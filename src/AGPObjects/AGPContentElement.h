// Shared shape of the elements whose only job is to carry their character data (Title, Label, ...).
#pragma once

#include "AGPCommonBase.h"

template <AGPObjectTypeInfo::AGPObjectType Type> class AGPContentElement : public AGPCommonBase {
public:
    AGPContentElement() { registerElement(); }
    AGPContentElement(const AGPContentElement&) = delete;
    AGPContentElement& operator=(const AGPContentElement&) = delete;
    ~AGPContentElement() override { unregisterElement(); }

    AGPObjectType getAGPObjectType() override { return Type; }
};
