// Shared static helpers for numbers, text, XML escaping, URL parameters and HTTP dates.
#pragma once

#include <sys/time.h>

#include <string>
#include <vector>

class AGPUtils {
public:
    static bool stringToInt(const std::string& text, int& out);
    static bool stringToUnsignedInt(const std::string& text, unsigned int& out);
    static bool stringToLong(const std::string& text, long& out);
    static bool stringToUnsignedLong(const std::string& text, unsigned long& out);

    // Removes leading and trailing blanks (spaces and tabs) in place; other white space stays.
    static void removeWhiteSpaces(std::string& text);
    static void toLowerCase(std::string& text);
    static void substituteXMLReservedChars(const std::string& in, std::string& out);

    // Decoded value of `key` in `url`: the text after the first "key=" up to the next "&".
    static std::string getValueFromURL(const std::string& url, std::string key);
    static std::string adjustIPv6Address(const std::string& address);
    // HTTP date (RFC 2822) to seconds since 1970 UTC; `out` is -1 unless it succeeds.
    static bool convertRFC2822TimeAndDateToUnixTime(const std::string& text, long& out);

    static void parseDelimitedNumericParts(const std::string& text, std::string delimiters,
                                           std::string& prefix, std::vector<std::string>& parts,
                                           std::string& suffix);
    static bool parseDateParts(const std::string& text, const std::string& delimiters, std::string& prefix,
                               std::string& part1, std::string& part2, std::string& part3,
                               std::string& suffix);
    static bool parseTimeParts(const std::string& text, const std::string& delimiters, std::string& prefix,
                               std::string& part1, std::string& part2, std::string& suffix);
    // Seconds of "90" or of minutes and seconds as "1:30"; text around the two numbers is ignored.
    static bool getTimeInSeconds(const std::string& text, int& out);
    static float desktopCalcTimeTaken(timeval start, timeval end);

private:
    static bool parseNumberedParts(const std::string& text, const std::string& delimiters, size_t wanted,
                                   std::string& prefix, std::vector<std::string*> targets,
                                   std::string& suffix);
};
