// Interface of elements that follow the phone's date and time formats, with the conversions between them.
#pragma once

#include <cstdint>
#include <string>

// Implementers register with the GUI handler (addDateTimeChangeListener) and are told of a change
// on the host's thread while the GUI handler holds its listener lock: the registration must end
// (removeDateTimeChangeListener) before the implementer is destroyed.
class AGPDateTimeChangeListenerIfc {
public:
    enum AGPDateFormat : std::int32_t {
        MM_SLASH_DD_SLASH_YYYY = 0,
        YYYY_DASH_MM_DASH_DD = 1,
        DD_DOT_MM_DOT_YYYY = 2,
        DATE_FORMAT_UNKNOWN = 3
    };
    enum AGPTimeFormat : std::int32_t { HR12 = 0, HR24 = 1, TIME_FORMAT_UNKNOWN = 2 };

    virtual void dateFormatChanged(AGPDateFormat oldFormat, AGPDateFormat newFormat) = 0;
    virtual void timeFormatChanged(AGPTimeFormat oldFormat, AGPTimeFormat newFormat) = 0;

    static AGPDateFormat getDateFormat(const std::string& text);
    static AGPTimeFormat getTimeFormat(const std::string& text);
    // The three numbers of `text` read in the order of `from`, written in the order of `to`, with
    // the text around them kept; unchanged when either format is unknown or the text has no date.
    static std::string convertDateFormat(const std::string& text, AGPDateFormat from, AGPDateFormat to);
    // Hour and minute re-written for `to`, with the " am"/" pm" marker of 12 hours; unchanged when
    // either format is unknown or the text has no time.
    static std::string convertTimeFormat(const std::string& text, AGPTimeFormat from, AGPTimeFormat to);
    // The date's three numbers joined by "-"; empty when the text holds none.
    static std::string getJustDate_YYYY_DASH_MM_DASH_DD(const std::string& text);
    // "HH:MM" with its marker, if any; the text unchanged when it holds no time.
    static std::string getJustTime_HH_COLLON_MM(const std::string& text);
    // The former followed by ":00.000"; empty stays empty.
    static std::string getJustTime_HH_COLLON_MM_COLLON_SS_DOT_MSS(const std::string& text);

protected:
    ~AGPDateTimeChangeListenerIfc() = default;
};
