// The maximum value of a gauge, as seconds or minutes:seconds.
#pragma once

#include "AGPContentElement.h"
#include "AGPgaugeTimeType.h"

class AGPMaximum : public AGPContentElement<AGPObjectTypeInfo::ti_Maximum> {
public:
    AGPgaugeTimeType& getGaugeTimeType() { return mGaugeTimeType; }

private:
    AGPgaugeTimeType mGaugeTimeType;
};
