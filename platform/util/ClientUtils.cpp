// Small number and text conversions of the phone platform.
#include "util/ClientUtils.h"

std::string ClientUtils::itos(int value) {
    return std::to_string(value);
}

bool ClientUtils::stringToUnsignedShort(const std::string& text, unsigned short& out) {
    out = 0;
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string::npos) {
        return false;
    }
    const auto last = text.find_last_not_of(" \t");
    unsigned long value = 0;
    for (size_t i = first; i <= last; ++i) {
        const char c = text[i];
        if (c < '0' || c > '9') {
            return false;
        }
        value = value * 10 + static_cast<unsigned long>(c - '0');
        if (value > 65535) {
            return false;
        }
    }
    out = static_cast<unsigned short>(value);
    return true;
}
