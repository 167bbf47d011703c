// Shared static helpers for numbers, text, XML escaping, URL parameters and HTTP dates.
#include "AGPUtils.h"

#include <cctype>
#include <charconv>
#include <ctime>
#include <limits>
#include <type_traits>

#include "uri/GPALAdmin.h"

namespace {

const char* const kBlanks = " \t";
const char* const kDigits = "0123456789";
const char* const kMonths[] = {"jan", "feb", "mar", "apr", "may", "jun",
                               "jul", "aug", "sep", "oct", "nov", "dec"};

struct ZoneOffset {
    const char* name;
    int minutes;
};
const ZoneOffset kZones[] = {{"ut", 0},     {"gmt", 0},    {"est", -300}, {"edt", -240}, {"cst", -360},
                             {"cdt", -300}, {"mst", -420}, {"mdt", -360}, {"pst", -480}, {"pdt", -420},
                             {"a", -60},    {"z", 0},      {"m", -720},   {"n", 60},     {"y", 720}};

// Reads a number as a stream does: blanks first, an optional sign, then digits up to the first
// non-digit. Blank text fails and leaves `out` alone; other text without digits fails with 0, out of range
// with the nearest limit; an unsigned number with a minus sign wraps around, as with strtoul. (Attributes
// hold many numbers: this is several times quicker than a string stream.)
template <typename Number> bool readNumber(const std::string& text, Number& out) {
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end && std::isspace(static_cast<unsigned char>(*at))) {
        ++at;
    }
    if (at == end) {
        return false; // nothing but blanks leaves the number as it was
    }
    bool negative = false;
    if (*at == '+' || *at == '-') {
        negative = *at == '-';
        ++at;
    }
    using Magnitude = std::make_unsigned_t<Number>;
    Magnitude magnitude = 0;
    const std::from_chars_result read = std::from_chars(at, end, magnitude);
    if (read.ptr == at) {
        out = 0;
        return false;
    }
    const Magnitude limit =
        std::is_signed<Number>::value
            ? static_cast<Magnitude>(std::numeric_limits<Number>::max()) + (negative ? 1 : 0)
            : std::numeric_limits<Magnitude>::max();
    if (read.ec == std::errc::result_out_of_range || magnitude > limit) {
        out = negative && std::is_signed<Number>::value ? std::numeric_limits<Number>::min()
                                                        : std::numeric_limits<Number>::max();
        return false;
    }
    out = static_cast<Number>(negative ? Magnitude(0) - magnitude : magnitude);
    return true;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Removes the text up to `end` (exclusive) and trims blanks at both ends.
void cutBefore(std::string& text, size_t end) {
    text.erase(0, end);
    AGPUtils::removeWhiteSpaces(text);
}

// Reads the number in front of the first `separator`; fails without one or when it is no number.
bool takeNumberBefore(std::string& text, char separator, int& out, bool cutSeparator) {
    const size_t at = text.find(separator);
    if (at == std::string::npos || !AGPUtils::stringToInt(text.substr(0, at), out)) {
        return false;
    }
    cutBefore(text, cutSeparator ? at + 1 : at);
    return true;
}

bool zoneOffset(const std::string& zone, int& minutes) {
    if (zone.empty()) {
        minutes = 0;
        return true;
    }
    if (zone.size() == 4 || zone.size() == 5) {
        int sign = 1;
        std::string digits = zone;
        if (zone.size() == 5) {
            sign = zone[0] == '-' ? -1 : 1;
            digits = zone.substr(1);
        }
        int hours = 0;
        int mins = 0;
        if (!AGPUtils::stringToInt(digits.substr(0, 2), hours) ||
            !AGPUtils::stringToInt(digits.substr(2, 2), mins)) {
            return false;
        }
        minutes = sign * (hours * 60 + mins);
        return true;
    }
    if (zone.size() > 5) {
        return false;
    }
    minutes = 0;
    for (const ZoneOffset& known : kZones) {
        if (zone == known.name) {
            minutes = known.minutes;
        }
    }
    return true;
}

// Start of the first digit run followed by a delimiter, or of the first digit run.
size_t startOfNumberGroup(const std::string& text, const std::string& delimiters) {
    const size_t first = text.find_first_of(kDigits);
    size_t run = first;
    while (run != std::string::npos) {
        const size_t end = text.find_first_not_of(kDigits, run);
        if (end == std::string::npos) {
            break;
        }
        if (delimiters.find(text[end]) != std::string::npos) {
            return run;
        }
        run = text.find_first_of(kDigits, end);
    }
    return first;
}

} // namespace

bool AGPUtils::stringToInt(const std::string& text, int& out) {
    return readNumber(text, out);
}
bool AGPUtils::stringToUnsignedInt(const std::string& text, unsigned int& out) {
    return readNumber(text, out);
}
bool AGPUtils::stringToLong(const std::string& text, long& out) {
    return readNumber(text, out);
}
bool AGPUtils::stringToUnsignedLong(const std::string& text, unsigned long& out) {
    return readNumber(text, out);
}

void AGPUtils::removeWhiteSpaces(std::string& text) {
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) {
        text.clear();
        return;
    }
    text.erase(text.find_last_not_of(kBlanks) + 1);
    text.erase(0, first);
}

void AGPUtils::toLowerCase(std::string& text) {
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
}

void AGPUtils::substituteXMLReservedChars(const std::string& in, std::string& out) {
    out.clear();
    out.reserve(in.size());
    for (char c : in) {
        switch (c) {
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '&':
            out += "&amp;";
            break;
        case '\'':
            out += "&apos;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
}

std::string AGPUtils::getValueFromURL(const std::string& url, std::string key) {
    if (url.empty() || key.empty()) {
        return "";
    }
    key += "=";
    const size_t match = url.find(key);
    if (match == std::string::npos) {
        return "";
    }
    const size_t start = match + key.size();
    if (start >= url.size()) {
        return "";
    }
    const size_t end = url.find('&', start);
    std::string decoded;
    GPALAdmin::decodeUri(url.substr(start, end == std::string::npos ? std::string::npos : end - start),
                         decoded);
    return decoded;
}

std::string AGPUtils::adjustIPv6Address(const std::string& address) {
    if (address.find(':') != std::string::npos && address.find('[') == std::string::npos &&
        address.find(']') == std::string::npos) {
        return "[" + address + "]";
    }
    return address;
}

bool AGPUtils::convertRFC2822TimeAndDateToUnixTime(const std::string& text, long& out) {
    out = -1;
    if (text.empty()) {
        return false;
    }
    std::string s = text;
    toLowerCase(s);
    const size_t comma = s.find(',');
    if (comma == std::string::npos) {
        return false;
    }
    cutBefore(s, comma + 1);

    int day = 0;
    int year = 0;
    int hour = 0;
    int minutes = 0;
    int seconds = 0;
    if (!takeNumberBefore(s, ' ', day, false)) {
        return false;
    }
    const size_t monthEnd = s.find(' ');
    if (monthEnd == std::string::npos) {
        return false;
    }
    int month = -1;
    for (int i = 0; i < 12; ++i) {
        if (s.compare(0, monthEnd, kMonths[i]) == 0 && monthEnd == 3) {
            month = i;
        }
    }
    if (month < 0) {
        return false;
    }
    cutBefore(s, monthEnd);
    if (!takeNumberBefore(s, ' ', year, false)) {
        return false;
    }
    if (year < 1900) {
        year += year < 50 ? 2000 : 1900;
    }
    if (!takeNumberBefore(s, ':', hour, true)) {
        return false;
    }
    const size_t colon = s.find(':');
    if (colon != std::string::npos) {
        if (!takeNumberBefore(s, ':', minutes, true)) {
            return false;
        }
        const size_t end = s.find(' ');
        if (!stringToInt(s.substr(0, end), seconds)) {
            return false;
        }
        cutBefore(s, end == std::string::npos ? s.size() : end);
    } else {
        const size_t end = s.find(' ');
        if (!stringToInt(s.substr(0, end), minutes)) {
            return false;
        }
        cutBefore(s, end == std::string::npos ? s.size() : end);
    }
    int offset = 0;
    if (!zoneOffset(s, offset)) {
        return false;
    }
    tm calendar{};
    calendar.tm_mday = day;
    calendar.tm_mon = month;
    calendar.tm_year = year - 1900;
    calendar.tm_hour = hour;
    calendar.tm_min = minutes - offset;
    calendar.tm_sec = seconds;
    out = static_cast<long>(timegm(&calendar));
    return out >= 0;
}

void AGPUtils::parseDelimitedNumericParts(const std::string& text, std::string delimiters,
                                          std::string& prefix, std::vector<std::string>& parts,
                                          std::string& suffix) {
    parts.clear();
    prefix.clear();
    suffix.clear();
    size_t position = startOfNumberGroup(text, delimiters);
    if (position == std::string::npos) {
        prefix = text;
        return;
    }
    prefix = text.substr(0, position);
    size_t lastEnd = position;
    while (true) {
        const size_t runEnd = text.find_first_not_of(kDigits, position);
        parts.push_back(
            text.substr(position, runEnd == std::string::npos ? std::string::npos : runEnd - position));
        if (runEnd == std::string::npos) {
            return;
        }
        lastEnd = runEnd;
        const size_t next = text.find_first_not_of(delimiters, runEnd);
        if (next == std::string::npos || !isDigit(text[next])) {
            break;
        }
        position = next;
    }
    suffix = text.substr(lastEnd);
}

bool AGPUtils::parseNumberedParts(const std::string& text, const std::string& delimiters, size_t wanted,
                                  std::string& prefix, std::vector<std::string*> targets,
                                  std::string& suffix) {
    std::vector<std::string> parts;
    parseDelimitedNumericParts(text, delimiters, prefix, parts, suffix);
    for (std::string* target : targets) {
        target->clear();
    }
    if (parts.size() < wanted) {
        return false;
    }
    for (size_t i = 0; i < wanted; ++i) {
        *targets[i] = parts[i];
    }
    for (size_t i = parts.size(); i > wanted; --i) {
        suffix = delimiters + parts[i - 1] + suffix;
    }
    return true;
}

bool AGPUtils::parseDateParts(const std::string& text, const std::string& delimiters, std::string& prefix,
                              std::string& part1, std::string& part2, std::string& part3,
                              std::string& suffix) {
    return parseNumberedParts(text, delimiters, 3, prefix, {&part1, &part2, &part3}, suffix);
}

bool AGPUtils::parseTimeParts(const std::string& text, const std::string& delimiters, std::string& prefix,
                              std::string& part1, std::string& part2, std::string& suffix) {
    return parseNumberedParts(text, delimiters, 2, prefix, {&part1, &part2}, suffix);
}

bool AGPUtils::getTimeInSeconds(const std::string& text, int& out) {
    if (text.find_first_not_of(kDigits) == std::string::npos) {
        return stringToInt(text, out);
    }
    std::string prefix;
    std::string minutesText;
    std::string secondsText;
    std::string suffix;
    if (!parseTimeParts(text, ":", prefix, minutesText, secondsText, suffix)) {
        return false;
    }
    int minutes = 0;
    int seconds = 0;
    if (!stringToInt(minutesText, minutes) || !stringToInt(secondsText, seconds) || seconds >= 60 ||
        minutes < 0) {
        return false;
    }
    out = minutes * 60 + seconds;
    return true;
}

float AGPUtils::desktopCalcTimeTaken(timeval start, timeval end) {
    return static_cast<float>(end.tv_sec - start.tv_sec) +
           (static_cast<float>(end.tv_usec) / 1000000.0f - static_cast<float>(start.tv_usec) / 1000000.0f);
}
