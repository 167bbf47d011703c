// The shared fallback values: "PARSE_FAILED" objects and the predefined defaults.
#include "AGPObjectPool.h"

#include "AGPDate.h"
#include "AGPDateKey.h"
#include "AGPDefault.h"
#include "AGPFColor.h"
#include "AGPKey.h"
#include "AGPSFColor.h"
#include "AGPSTColor.h"
#include "AGPTColor.h"
#include "AGPTime.h"
#include "AGPTimeKey.h"
#include "AGPUrlKey.h"
#include "AGPValue.h"
#include "AGPcolourType.h"
#include "AGPgaugeTimeType.h"
#include "AGPimagePath.h"
#include "AGPtimeZoneType.h"

AGPKey* AGPObjectPool::mpAGPKEY_PARSE_FAILED = nullptr;
AGPValue* AGPObjectPool::mpAGPVALUE_PARSE_FAILED = nullptr;
AGPcolourType* AGPObjectPool::mpAGPcolourType_PARSE_FAILED = nullptr;
AGPFColor* AGPObjectPool::mpAGPFColor_PARSE_FAILED = nullptr;
AGPSFColor* AGPObjectPool::mpAGPSFColor_PARSE_FAILED = nullptr;
AGPSTColor* AGPObjectPool::mpAGPSTColor_PARSE_FAILED = nullptr;
AGPTColor* AGPObjectPool::mpAGPTColor_PARSE_FAILED = nullptr;
AGPDate* AGPObjectPool::mpAGPDate_PARSE_FAILED = nullptr;
AGPDateKey* AGPObjectPool::mpAGPDateKey_PARSE_FAILED = nullptr;
AGPDefault* AGPObjectPool::mpAGPDefault_NULL = nullptr;
AGPDefault* AGPObjectPool::mpAGPDefault_PARSE_FAILED = nullptr;
AGPDefault* AGPObjectPool::mpAGPDefault_PHONENUMBER = nullptr;
AGPDefault* AGPObjectPool::mpAGPDefault_TEXT = nullptr;
AGPimagePath* AGPObjectPool::mpAGPimagePath_PARSE_FAILED = nullptr;
AGPTimeKey* AGPObjectPool::mpAGPTimeKey_PARSE_FAILED = nullptr;
AGPUrlKey* AGPObjectPool::mpAGPUrlKey_PARSE_FAILED = nullptr;
AGPgaugeTimeType* AGPObjectPool::mpAGPgaugeTimeType_PARSE_FAILED = nullptr;
AGPtimeZoneType* AGPObjectPool::mpAGPtimeZoneType_PARSE_FAILED = nullptr;
AGPTime* AGPObjectPool::mpAGPTime_PARSE_FAILED = nullptr;

namespace {

const char* const kParseFailed = AGPObjectPool::kParseFailedText;

template <typename Value> void deletePoolObject(Value*& object) {
    delete object;
    object = nullptr;
}

} // namespace

// Created in this order so that the registry hands out their identifiers in a fixed order.
void AGPObjectPool::initPool() {
    mpAGPKEY_PARSE_FAILED = new AGPKey(kParseFailed);
    mpAGPVALUE_PARSE_FAILED = new AGPValue(kParseFailed);
    mpAGPcolourType_PARSE_FAILED = new AGPcolourType(kParseFailed);
    mpAGPFColor_PARSE_FAILED = new AGPFColor(new AGPcolourType(kParseFailed));
    mpAGPSFColor_PARSE_FAILED = new AGPSFColor(new AGPcolourType(kParseFailed));
    mpAGPSTColor_PARSE_FAILED = new AGPSTColor(new AGPcolourType(kParseFailed));
    mpAGPTColor_PARSE_FAILED = new AGPTColor(new AGPcolourType(kParseFailed));
    mpAGPDate_PARSE_FAILED = new AGPDate(kParseFailed);
    mpAGPDateKey_PARSE_FAILED = new AGPDateKey(kParseFailed);
    mpAGPDefault_NULL = new AGPDefault("NULL");
    mpAGPDefault_PARSE_FAILED = new AGPDefault(kParseFailed);
    mpAGPDefault_PHONENUMBER = new AGPDefault("PHONENUMBER");
    mpAGPDefault_TEXT = new AGPDefault("TEXT");
    mpAGPimagePath_PARSE_FAILED = new AGPimagePath(kParseFailed);
    mpAGPTimeKey_PARSE_FAILED = new AGPTimeKey(kParseFailed);
    mpAGPUrlKey_PARSE_FAILED = new AGPUrlKey(kParseFailed);
    mpAGPgaugeTimeType_PARSE_FAILED = new AGPgaugeTimeType(kParseFailed);
    mpAGPtimeZoneType_PARSE_FAILED = new AGPtimeZoneType(kParseFailed);
    mpAGPTime_PARSE_FAILED = new AGPTime(kParseFailed);
}

void AGPObjectPool::shutdownPool() {
    deletePoolObject(mpAGPKEY_PARSE_FAILED);
    deletePoolObject(mpAGPVALUE_PARSE_FAILED);
    deletePoolObject(mpAGPFColor_PARSE_FAILED);
    deletePoolObject(mpAGPSFColor_PARSE_FAILED);
    deletePoolObject(mpAGPSTColor_PARSE_FAILED);
    deletePoolObject(mpAGPTColor_PARSE_FAILED);
    deletePoolObject(mpAGPcolourType_PARSE_FAILED);
    deletePoolObject(mpAGPDate_PARSE_FAILED);
    deletePoolObject(mpAGPDateKey_PARSE_FAILED);
    deletePoolObject(mpAGPDefault_NULL);
    deletePoolObject(mpAGPDefault_PARSE_FAILED);
    deletePoolObject(mpAGPDefault_PHONENUMBER);
    deletePoolObject(mpAGPDefault_TEXT);
    deletePoolObject(mpAGPimagePath_PARSE_FAILED);
    deletePoolObject(mpAGPTimeKey_PARSE_FAILED);
    deletePoolObject(mpAGPUrlKey_PARSE_FAILED);
    deletePoolObject(mpAGPgaugeTimeType_PARSE_FAILED);
    deletePoolObject(mpAGPtimeZoneType_PARSE_FAILED);
    deletePoolObject(mpAGPTime_PARSE_FAILED);
}
