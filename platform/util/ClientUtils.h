// Small number and text conversions of the phone platform.
#pragma once

#include <string>

class ClientUtils {
public:
    // Decimal text of a number, with a minus sign when negative and no leading zeros.
    static std::string itos(int value);
    // Converts a whole decimal text (optional surrounding blanks) to 0..65535. Returns false and sets
    // `out` to 0 for anything else: "", "-1", "3x", "70000".
    static bool stringToUnsignedShort(const std::string& text, unsigned short& out);
};
