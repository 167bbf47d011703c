// Conversions between the phone's date and time formats and the documents' interchange formats.
#include "AGPDateTimeChangeListenerIfc.h"

#include "AGPUtils.h"

namespace {

struct DateLayout {
    const char* separator;
    // Position of year, month and day among the three numbers.
    int year;
    int month;
    int day;
};

bool layoutOf(AGPDateTimeChangeListenerIfc::AGPDateFormat format, DateLayout& layout) {
    switch (format) {
    case AGPDateTimeChangeListenerIfc::MM_SLASH_DD_SLASH_YYYY:
        layout = {"/", 2, 0, 1};
        return true;
    case AGPDateTimeChangeListenerIfc::YYYY_DASH_MM_DASH_DD:
        layout = {"-", 0, 1, 2};
        return true;
    case AGPDateTimeChangeListenerIfc::DD_DOT_MM_DOT_YYYY:
        layout = {".", 2, 1, 0};
        return true;
    default:
        return false;
    }
}

std::string twoDigits(int number) {
    return (number >= 0 && number < 10 ? "0" : "") + std::to_string(number);
}

void eraseFirst(std::string& text, const std::string& piece) {
    const size_t found = text.find(piece);
    if (found != std::string::npos) {
        text.erase(found, piece.size());
    }
}

} // namespace

AGPDateTimeChangeListenerIfc::AGPDateFormat
AGPDateTimeChangeListenerIfc::getDateFormat(const std::string& text) {
    if (text == "MM/DD/YYYY") {
        return MM_SLASH_DD_SLASH_YYYY;
    }
    if (text == "YYYY-MM-DD") {
        return YYYY_DASH_MM_DASH_DD;
    }
    if (text == "DD.MM.YYYY") {
        return DD_DOT_MM_DOT_YYYY;
    }
    return DATE_FORMAT_UNKNOWN;
}

AGPDateTimeChangeListenerIfc::AGPTimeFormat
AGPDateTimeChangeListenerIfc::getTimeFormat(const std::string& text) {
    if (text == "12HR") {
        return HR12;
    }
    if (text == "24HR") {
        return HR24;
    }
    return TIME_FORMAT_UNKNOWN;
}

std::string AGPDateTimeChangeListenerIfc::convertDateFormat(const std::string& text, AGPDateFormat from,
                                                            AGPDateFormat to) {
    DateLayout in{};
    DateLayout out{};
    if (!layoutOf(from, in) || !layoutOf(to, out)) {
        return text;
    }
    std::string prefix;
    std::string parts[3];
    std::string suffix;
    if (!AGPUtils::parseDateParts(text, in.separator, prefix, parts[0], parts[1], parts[2], suffix)) {
        return text;
    }
    std::string ordered[3];
    ordered[out.year] = parts[in.year];
    ordered[out.month] = parts[in.month];
    ordered[out.day] = parts[in.day];
    return prefix + ordered[0] + out.separator + ordered[1] + out.separator + ordered[2] + suffix;
}

std::string AGPDateTimeChangeListenerIfc::convertTimeFormat(const std::string& text, AGPTimeFormat from,
                                                            AGPTimeFormat to) {
    std::string prefix;
    std::string hourText;
    std::string minuteText;
    std::string suffix;
    int hour = 0;
    int minute = 0;
    if (from == TIME_FORMAT_UNKNOWN || to == TIME_FORMAT_UNKNOWN ||
        !AGPUtils::parseTimeParts(text, ":", prefix, hourText, minuteText, suffix) ||
        !AGPUtils::stringToInt(hourText, hour) || !AGPUtils::stringToInt(minuteText, minute)) {
        return text;
    }
    if (from == HR12) {
        if (suffix.find("pm") != std::string::npos && hour < 12) {
            hour += 12;
        } else if (suffix.find("am") != std::string::npos && hour == 12) {
            hour = 0;
        }
    }
    const std::string marker = hour < 12 ? " am" : " pm";
    if (suffix.find(" pm") != std::string::npos) {
        eraseFirst(suffix, " pm");
    } else {
        eraseFirst(suffix, " am");
    }
    if (to == HR12) {
        if (hour == 0) {
            hour = 12;
        }
        hour = ((hour - 1) % 12) + 1;
        return prefix + twoDigits(hour) + ":" + twoDigits(minute) + marker + suffix;
    }
    return prefix + twoDigits(hour) + ":" + twoDigits(minute) + suffix;
}

std::string AGPDateTimeChangeListenerIfc::getJustDate_YYYY_DASH_MM_DASH_DD(const std::string& text) {
    std::string prefix;
    std::string year;
    std::string month;
    std::string day;
    std::string suffix;
    if (!AGPUtils::parseDateParts(text, "-", prefix, year, month, day, suffix)) {
        return std::string();
    }
    return year + "-" + month + "-" + day;
}

std::string AGPDateTimeChangeListenerIfc::getJustTime_HH_COLLON_MM(const std::string& text) {
    std::string prefix;
    std::string hour;
    std::string minute;
    std::string suffix;
    if (!AGPUtils::parseTimeParts(text, ":", prefix, hour, minute, suffix)) {
        return text;
    }
    std::string marker;
    if (suffix.find(" am") != std::string::npos) {
        marker = " am";
    } else if (suffix.find(" pm") != std::string::npos) {
        marker = " pm";
    }
    return hour + ":" + minute + marker;
}

std::string
AGPDateTimeChangeListenerIfc::getJustTime_HH_COLLON_MM_COLLON_SS_DOT_MSS(const std::string& text) {
    const std::string time = getJustTime_HH_COLLON_MM(text);
    return time.empty() ? time : time + ":00.000";
}
