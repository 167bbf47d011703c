// A collection of HTTP header lines: request headers handed to the HTTP service and the response
// headers it returns.
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

// Names are stored in lower case (HTTP header names are case-insensitive), values as received with
// surrounding blanks removed. Every header line is kept in the order added, so a header that
// occurs several times keeps every value; a value is never split at commas
// ("private, max-age=600" is one value).
class HttpServiceHeaders {
public:
    using Header = std::pair<std::string, std::string>; // lower-case name, value

    HttpServiceHeaders();
    ~HttpServiceHeaders();

    // Number of header lines (a header received twice counts twice). 0: no headers at all.
    int getNumOfHeaders() const;
    // The value at `index` among the values of header `name` (in the order added); "" when the
    // header is absent or has fewer values. `name` is compared case-insensitively.
    std::string getHeader(const std::string& name, int index) const;
    // Every value of header `name`, sorted; empty when absent. The second argument is unused (the
    // phonelet passes 0).
    std::set<std::string> getHeaders(const std::string& name, int unused) const;

    // Adds one header line; the name is stored in lower case.
    void addHeader(const std::string& name, const std::string& value);
    // Appends text to the value of the last header line (an obsolete folded continuation line).
    // Does nothing when the collection is empty.
    void appendToLastValue(const std::string& text);
    void clear();
    // Every header line in the order added (for the emulator's developer panel).
    const std::vector<Header>& getAllHeaders() const { return mHeaders; }

private:
    std::vector<Header> mHeaders;
};
