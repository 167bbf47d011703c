// The initial value of a gauge, as seconds or minutes:seconds.
#pragma once

#include "AGPContentElement.h"
#include "AGPgaugeTimeType.h"

class AGPInitial : public AGPContentElement<AGPObjectTypeInfo::ti_Initial> {
public:
    AGPgaugeTimeType& getGaugeTimeType() { return mGaugeTimeType; }

private:
    AGPgaugeTimeType mGaugeTimeType;
};
