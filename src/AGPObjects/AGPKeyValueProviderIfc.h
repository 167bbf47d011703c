// Interface of elements that contribute key/value pairs to the request of their screen.
#pragma once

#include <map>
#include <string>

class AGPKeyValueProviderIfc {
public:
    virtual void gatherKeyValues(std::multimap<std::string, std::string>& keyValues) = 0;

protected:
    ~AGPKeyValueProviderIfc() = default;
};
