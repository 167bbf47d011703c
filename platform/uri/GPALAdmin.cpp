// Percent-encoding and decoding of URI text.
#include "uri/GPALAdmin.h"

#include <cstring>

namespace {

bool isUnreserved(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

bool isReserved(unsigned char c) {
    return c != '\0' && std::strchr(":/?#[]@!$&'()*+,;=", c) != nullptr;
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return -1;
}

} // namespace

void GPALAdmin::encodeUri(const std::string& in, std::string& out, bool asComponent, bool spaceAsPercent) {
    static const char kHex[] = "0123456789ABCDEF";
    out.clear();
    out.reserve(in.size() * 3);
    for (char ch : in) {
        const auto c = static_cast<unsigned char>(ch);
        if (isUnreserved(c) || (!asComponent && isReserved(c))) {
            out += ch;
        } else if (c == ' ' && !spaceAsPercent) {
            out += '+';
        } else {
            out += '%';
            out += kHex[c >> 4];
            out += kHex[c & 0x0F];
        }
    }
}

int GPALAdmin::decodeUri(const std::string& in, std::string& out) {
    out.clear();
    out.reserve(in.size());
    for (size_t i = 0; i < in.size(); ++i) {
        const char c = in[i];
        if (c == '+') {
            out += ' ';
        } else if (c == '%' && i + 2 < in.size() && hexValue(in[i + 1]) >= 0 && hexValue(in[i + 2]) >= 0) {
            out += static_cast<char>(hexValue(in[i + 1]) * 16 + hexValue(in[i + 2]));
            i += 2;
        } else {
            out += c;
        }
    }
    return static_cast<int>(out.size());
}
