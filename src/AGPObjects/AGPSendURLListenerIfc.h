// Interface through which a full-screen element or key element hands a request to its screen.
#pragma once

#include <map>
#include <string>

class AGPDisplayable;

class AGPSendURLListenerIfc {
public:
    // Both complete `keyValues` and `url` in place before queueing the request.
    virtual void sendURL(AGPDisplayable* sender, std::multimap<std::string, std::string>& keyValues,
                         std::string& url) = 0;
    virtual void sendExitURL(AGPDisplayable* sender, std::multimap<std::string, std::string>& keyValues,
                             std::string& url) = 0;

protected:
    ~AGPSendURLListenerIfc() = default;
};
