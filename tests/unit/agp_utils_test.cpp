// Tests of the shared text, number, URL and time helpers.
#include <gtest/gtest.h>

#include "AGPUtils.h"

TEST(AGPUtils, NumbersTrimmingAndEscaping) {
    int number = 0;
    EXPECT_TRUE(AGPUtils::stringToInt("12abc", number));
    EXPECT_EQ(number, 12);
    EXPECT_TRUE(AGPUtils::stringToInt("  -7", number));
    EXPECT_EQ(number, -7);
    EXPECT_FALSE(AGPUtils::stringToInt("abc", number));
    EXPECT_FALSE(AGPUtils::stringToInt("", number));
    EXPECT_FALSE(AGPUtils::stringToInt("99999999999", number)) << "out of range sets the fail state";
    EXPECT_TRUE(AGPUtils::stringToInt("\n+5", number));
    EXPECT_EQ(number, 5);
    EXPECT_TRUE(AGPUtils::stringToInt("-2147483648", number));
    EXPECT_EQ(number, -2147483648);
    EXPECT_FALSE(AGPUtils::stringToInt("2147483648", number));
    EXPECT_FALSE(AGPUtils::stringToInt("+-5", number));
    EXPECT_FALSE(AGPUtils::stringToInt("- 5", number));
    unsigned int wrapped = 0;
    EXPECT_TRUE(AGPUtils::stringToUnsignedInt("-1", wrapped)) << "a minus sign wraps, as with strtoul";
    EXPECT_EQ(wrapped, 4294967295u);
    unsigned long big = 0;
    EXPECT_TRUE(AGPUtils::stringToUnsignedLong("4294967296", big));
    EXPECT_EQ(big, 4294967296UL);

    std::string text = "\t a b \t";
    AGPUtils::removeWhiteSpaces(text);
    EXPECT_EQ(text, "a b");
    text = "  ";
    AGPUtils::removeWhiteSpaces(text);
    EXPECT_EQ(text, "");
    text = "\n x \r";
    AGPUtils::removeWhiteSpaces(text);
    EXPECT_EQ(text, "\n x \r") << "line feeds and carriage returns are kept";

    text = "MiXeD 1";
    AGPUtils::toLowerCase(text);
    EXPECT_EQ(text, "mixed 1");

    std::string escaped = "stale";
    AGPUtils::substituteXMLReservedChars("a<b & \"c\" 'd'>", escaped);
    EXPECT_EQ(escaped, "a&lt;b &amp; &quot;c&quot; &apos;d&apos;&gt;");
    AGPUtils::substituteXMLReservedChars("&amp;", escaped);
    EXPECT_EQ(escaped, "&amp;amp;");
}

TEST(AGPUtils, UrlParametersAndAddresses) {
    EXPECT_EQ(AGPUtils::getValueFromURL("p?userid=7&id=9", "id"), "7")
        << "the first match wins, inside userid too";
    EXPECT_EQ(AGPUtils::getValueFromURL("p?a=1&x=", "x"), "");
    EXPECT_EQ(AGPUtils::getValueFromURL("p?a=1", ""), "");
    EXPECT_EQ(AGPUtils::getValueFromURL("", "a"), "");
    EXPECT_EQ(AGPUtils::getValueFromURL("ServerAddr=10.0.0.1&ProgramName=app%2Fstart+now", "ProgramName"),
              "app/start now");
    EXPECT_EQ(AGPUtils::getValueFromURL("a=1&b=2", "c"), "");

    EXPECT_EQ(AGPUtils::adjustIPv6Address("fe80::1"), "[fe80::1]");
    EXPECT_EQ(AGPUtils::adjustIPv6Address("[fe80::1]"), "[fe80::1]");
    EXPECT_EQ(AGPUtils::adjustIPv6Address("10.0.0.1"), "10.0.0.1");
}

TEST(AGPUtils, HttpDates) {
    const long expected = 1794904200; // 2026-11-17 08:30:00 UTC
    long seconds = 0;
    EXPECT_TRUE(AGPUtils::convertRFC2822TimeAndDateToUnixTime("Tue, 17 Nov 2026 08:30:00 GMT", seconds));
    EXPECT_EQ(seconds, expected);
    EXPECT_TRUE(AGPUtils::convertRFC2822TimeAndDateToUnixTime("Tue, 17 Nov 2026 09:30:00 +0100", seconds));
    EXPECT_EQ(seconds, expected);
    EXPECT_TRUE(AGPUtils::convertRFC2822TimeAndDateToUnixTime("Tue, 17 Nov 2026 03:30:00 EST", seconds));
    EXPECT_EQ(seconds, expected);
    EXPECT_TRUE(AGPUtils::convertRFC2822TimeAndDateToUnixTime("Tue, 17 Nov 2026 08:30 GMT", seconds));
    EXPECT_EQ(seconds, expected);
    EXPECT_TRUE(AGPUtils::convertRFC2822TimeAndDateToUnixTime("Tue, 17 Nov 26 08:30:00", seconds));
    EXPECT_EQ(seconds, expected) << "two-digit years below 50 are in this century, no zone is UTC";
    EXPECT_TRUE(AGPUtils::convertRFC2822TimeAndDateToUnixTime("Tue, 17 Nov 2026 08:30:00 cet", seconds));
    EXPECT_EQ(seconds, expected) << "an unknown short zone counts as UTC";

    for (const char* bad : {"", "17 Nov 2026 08:30:00 GMT", "Tue, 17 Nov 2026 08:30:00 +01000",
                            "Tue, 17 Nov 2026 08:30:00 cest", "Tue, 17 Foo 2026 08:30:00 GMT",
                            "Tue, xx Nov 2026 08:30", "Tue, 1 Jan 1900 00:00:00 GMT"}) {
        EXPECT_FALSE(AGPUtils::convertRFC2822TimeAndDateToUnixTime(bad, seconds)) << bad;
        EXPECT_LT(seconds, 0) << bad;
    }
}

TEST(AGPUtils, NumericPartsAndTimes) {
    std::string prefix, suffix;
    std::vector<std::string> parts;
    AGPUtils::parseDelimitedNumericParts("Date 2026-11-17 (Tue)", "-", prefix, parts, suffix);
    EXPECT_EQ(prefix, "Date ");
    EXPECT_EQ(parts, (std::vector<std::string>{"2026", "11", "17"}));
    EXPECT_EQ(suffix, " (Tue)");
    AGPUtils::parseDelimitedNumericParts("no digits", "-", prefix, parts, suffix);
    EXPECT_EQ(prefix, "no digits");
    EXPECT_TRUE(parts.empty());

    std::string a, b, c;
    EXPECT_TRUE(AGPUtils::parseDateParts("1.2.3.4.5x", ".", prefix, a, b, c, suffix));
    EXPECT_EQ(a + "|" + b + "|" + c, "1|2|3");
    EXPECT_EQ(suffix, ".4.5x") << "further parts go back in front of the suffix";
    EXPECT_FALSE(AGPUtils::parseDateParts("12.5", ".", prefix, a, b, c, suffix));
    EXPECT_EQ(a + b + c, "");
    EXPECT_TRUE(AGPUtils::parseTimeParts("at 10:15:30", ":", prefix, a, b, suffix));
    EXPECT_EQ(prefix + "|" + a + "|" + b + "|" + suffix, "at |10|15|:30");

    int seconds = -1;
    EXPECT_TRUE(AGPUtils::getTimeInSeconds("90", seconds));
    EXPECT_EQ(seconds, 90);
    EXPECT_TRUE(AGPUtils::getTimeInSeconds("ca. 2:30 min", seconds));
    EXPECT_EQ(seconds, 150);
    seconds = 7;
    EXPECT_FALSE(AGPUtils::getTimeInSeconds("1:75", seconds));
    EXPECT_FALSE(AGPUtils::getTimeInSeconds("", seconds));
    EXPECT_FALSE(AGPUtils::getTimeInSeconds("soon", seconds));
    EXPECT_EQ(seconds, 7);

    timeval start{10, 900000};
    timeval end{12, 100000};
    EXPECT_NEAR(AGPUtils::desktopCalcTimeTaken(start, end), 1.2f, 1e-5);
}
