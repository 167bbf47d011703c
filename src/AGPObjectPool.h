// The shared fallback values: "PARSE_FAILED" objects and the predefined defaults.
#pragma once

#include <string>

class AGPDate;
class AGPDateKey;
class AGPDefault;
class AGPFColor;
class AGPKey;
class AGPSFColor;
class AGPSTColor;
class AGPTColor;
class AGPTime;
class AGPTimeKey;
class AGPUrlKey;
class AGPValue;
class AGPcolourType;
class AGPgaugeTimeType;
class AGPimagePath;
class AGPtimeZoneType;

// Elements compare the values they parsed with these objects and copy the defaults; the pool
// owns them. Every pointer is null before initPool() and after shutdownPool().
class AGPObjectPool {
public:
    static void initPool();
    static void shutdownPool();

    // The text of every "PARSE_FAILED" object.
    static constexpr const char* kParseFailedText = "PARSE_FAILED";

    // Whether `value` equals the pooled object `pooled`. Before the pool exists (`pooled` null)
    // its objects cannot be compared, and `text` stands in for them.
    template <typename Value>
    static bool isPooled(const Value& value, const Value* pooled, const char* text = kParseFailedText) {
        return pooled != nullptr ? value == *pooled : value.getValueText() == text;
    }

    // Replaces `slot` by the colour parsed from `text`; false when it did not parse: it equals
    // `failed`, or, before the pool exists, its colour type reads "PARSE_FAILED".
    template <typename Color>
    static bool replaceColor(Color*& slot, std::string& text, Color* (*parse)(std::string&),
                             const Color* failed) {
        delete slot;
        slot = parse(text);
        if (failed != nullptr) {
            return !(*slot == *failed);
        }
        return slot->getColourType() == nullptr || slot->getColourType()->getValueText() != kParseFailedText;
    }

    static AGPKey* getAGPKey_PARSE_FAILED() { return mpAGPKEY_PARSE_FAILED; }
    static AGPValue* getAGPValue_PARSE_FAILED() { return mpAGPVALUE_PARSE_FAILED; }
    static AGPcolourType* getAGPcolourType_PARSE_FAILED() { return mpAGPcolourType_PARSE_FAILED; }
    static AGPFColor* getAGPFColor_PARSE_FAILED() { return mpAGPFColor_PARSE_FAILED; }
    static AGPSFColor* getAGPSFColor_PARSE_FAILED() { return mpAGPSFColor_PARSE_FAILED; }
    static AGPSTColor* getAGPSTColor_PARSE_FAILED() { return mpAGPSTColor_PARSE_FAILED; }
    static AGPTColor* getAGPTColor_PARSE_FAILED() { return mpAGPTColor_PARSE_FAILED; }
    static AGPDate* getAGPDate_PARSE_FAILED() { return mpAGPDate_PARSE_FAILED; }
    static AGPDateKey* getAGPDateKey_PARSE_FAILED() { return mpAGPDateKey_PARSE_FAILED; }
    static AGPDefault* getAGPDefault_NULL() { return mpAGPDefault_NULL; }
    static AGPDefault* getAGPDefault_PARSE_FAILED() { return mpAGPDefault_PARSE_FAILED; }
    static AGPDefault* getAGPDefault_PHONENUMBER() { return mpAGPDefault_PHONENUMBER; }
    static AGPDefault* getAGPDefault_TEXT() { return mpAGPDefault_TEXT; }
    static AGPimagePath* getAGPimagePath_PARSE_FAILED() { return mpAGPimagePath_PARSE_FAILED; }
    static AGPTimeKey* getAGPTimeKey_PARSE_FAILED() { return mpAGPTimeKey_PARSE_FAILED; }
    static AGPUrlKey* getAGPUrlKey_PARSE_FAILED() { return mpAGPUrlKey_PARSE_FAILED; }
    static AGPgaugeTimeType* getAGPgaugeTimeType_PARSE_FAILED() { return mpAGPgaugeTimeType_PARSE_FAILED; }
    static AGPtimeZoneType* getAGPtimeZoneType_PARSE_FAILED() { return mpAGPtimeZoneType_PARSE_FAILED; }
    static AGPTime* getAGPTime_PARSE_FAILED() { return mpAGPTime_PARSE_FAILED; }

private:
    static AGPKey* mpAGPKEY_PARSE_FAILED;
    static AGPValue* mpAGPVALUE_PARSE_FAILED;
    static AGPcolourType* mpAGPcolourType_PARSE_FAILED;
    static AGPFColor* mpAGPFColor_PARSE_FAILED;
    static AGPSFColor* mpAGPSFColor_PARSE_FAILED;
    static AGPSTColor* mpAGPSTColor_PARSE_FAILED;
    static AGPTColor* mpAGPTColor_PARSE_FAILED;
    static AGPDate* mpAGPDate_PARSE_FAILED;
    static AGPDateKey* mpAGPDateKey_PARSE_FAILED;
    static AGPDefault* mpAGPDefault_NULL;
    static AGPDefault* mpAGPDefault_PARSE_FAILED;
    static AGPDefault* mpAGPDefault_PHONENUMBER;
    static AGPDefault* mpAGPDefault_TEXT;
    static AGPimagePath* mpAGPimagePath_PARSE_FAILED;
    static AGPTimeKey* mpAGPTimeKey_PARSE_FAILED;
    static AGPUrlKey* mpAGPUrlKey_PARSE_FAILED;
    static AGPgaugeTimeType* mpAGPgaugeTimeType_PARSE_FAILED;
    static AGPtimeZoneType* mpAGPtimeZoneType_PARSE_FAILED;
    static AGPTime* mpAGPTime_PARSE_FAILED;
};
