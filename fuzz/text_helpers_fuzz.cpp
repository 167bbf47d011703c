// Feeds arbitrary text to the small parsers around a request: URL parameters and percent-coding,
// HTTP dates and the cache time of response headers, numbers, and the push endpoint's form
// decoder. The first byte chooses the parser; percent-coding must give back what it was given.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "AGPServerConnection.h"
#include "AGPUtils.h"
#include "PushEndpoint.h"
#include "http/HttpServiceHeaders.h"
#include "uri/GPALAdmin.h"

namespace {

// Splits at the first line break: the URL and the key asked for.
void urlParameters(const std::string& text) {
    const std::size_t cut = text.find('\n');
    const std::string url = text.substr(0, cut);
    const std::string key = cut == std::string::npos ? std::string("ServerAddr") : text.substr(cut + 1);
    AGPUtils::getValueFromURL(url, key);
    AGPUtils::adjustIPv6Address(url);
}

void percentCoding(const std::string& text) {
    for (bool spaceAsPercent : {true, false}) {
        std::string encoded;
        GPALAdmin::encodeUri(text, encoded, true, spaceAsPercent);
        std::string decoded;
        GPALAdmin::decodeUri(encoded, decoded);
        if (decoded != text) {
            std::abort(); // what was encoded as a component must decode to itself
        }
    }
    std::string decoded;
    GPALAdmin::decodeUri(text, decoded);
}

void datesAndNumbers(const std::string& text) {
    long seconds = 0;
    AGPUtils::convertRFC2822TimeAndDateToUnixTime(text, seconds);
    int inDay = 0;
    AGPUtils::getTimeInSeconds(text, inDay);
    int number = 0;
    AGPUtils::stringToInt(text, number);
    unsigned long large = 0;
    AGPUtils::stringToUnsignedLong(text, large);
}

// "name: value" lines, as a server sends them, then the cache time they give.
void responseHeaders(const std::string& text) {
    HttpServiceHeaders headers;
    std::size_t start = 0;
    for (int line = 0; line < 64 && start < text.size(); ++line) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string header = text.substr(start, end - start);
        const std::size_t colon = header.find(':');
        if (colon != std::string::npos) {
            headers.addHeader(header.substr(0, colon), header.substr(colon + 1));
        } else {
            headers.appendToLastValue(header);
        }
        start = end + 1;
    }
    AGPServerConnection::getCacheValidityFromHeaders(headers);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 5) {
    case 0:
        urlParameters(text);
        break;
    case 1:
        percentCoding(text);
        break;
    case 2:
        datesAndNumbers(text);
        break;
    case 3:
        responseHeaders(text);
        break;
    default:
        PushEndpoint::decodeForm(text);
        PushEndpoint::pushType(text);
        break;
    }
    return 0;
}
