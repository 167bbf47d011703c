// Percent-encoding and decoding of URI text.
#pragma once

#include <string>

class GPALAdmin {
public:
    // Percent-encodes `in` into `out` after RFC 3986: the unreserved characters A-Z a-z 0-9 - . _ ~
    // stay as they are and other bytes become %XX with upper-case hex digits.
    // `asComponent`: true encodes the reserved characters ":/?#[]@!$&'()*+,;=" too, as a query key
    // or value needs; false keeps them, for a whole URI.
    // `spaceAsPercent`: true writes a blank as %20; false as "+", the older form-data style.
    // Query keys and values are encoded with (true, true).
    static void encodeUri(const std::string& in, std::string& out, bool asComponent, bool spaceAsPercent);
    // Decodes %XX sequences (hex digits of either case) and "+" as a blank, as form data needs.
    // A "%" not followed by two hex digits is kept as it stands. Returns the length of `out`.
    static int decodeUri(const std::string& in, std::string& out);
};
