// A collection of HTTP header lines.
#include "http/HttpServiceHeaders.h"

namespace {

std::string lowerCase(const std::string& text) {
    std::string lower = text;
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return lower;
}

} // namespace

HttpServiceHeaders::HttpServiceHeaders() = default;

HttpServiceHeaders::~HttpServiceHeaders() = default;

int HttpServiceHeaders::getNumOfHeaders() const {
    return static_cast<int>(mHeaders.size());
}

std::string HttpServiceHeaders::getHeader(const std::string& name, int index) const {
    if (index < 0) {
        return "";
    }
    const std::string wanted = lowerCase(name);
    int seen = 0;
    for (const Header& header : mHeaders) {
        if (header.first == wanted && seen++ == index) {
            return header.second;
        }
    }
    return "";
}

std::set<std::string> HttpServiceHeaders::getHeaders(const std::string& name, int) const {
    const std::string wanted = lowerCase(name);
    std::set<std::string> values;
    for (const Header& header : mHeaders) {
        if (header.first == wanted) {
            values.insert(header.second);
        }
    }
    return values;
}

void HttpServiceHeaders::addHeader(const std::string& name, const std::string& value) {
    mHeaders.emplace_back(lowerCase(name), value);
}

void HttpServiceHeaders::appendToLastValue(const std::string& text) {
    if (!mHeaders.empty()) {
        mHeaders.back().second += text;
    }
}

void HttpServiceHeaders::clear() {
    mHeaders.clear();
}
