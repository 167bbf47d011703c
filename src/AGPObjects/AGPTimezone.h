// The time zone of a date field.
#pragma once

#include "AGPContentElement.h"
#include "AGPtimeZoneType.h"

class AGPTimezone : public AGPContentElement<AGPObjectTypeInfo::ti_Timezone> {
public:
    AGPtimeZoneType& getTimeZoneType() { return mTimeZoneType; }

private:
    AGPtimeZoneType mTimeZoneType;
};
