// Sends trace texts, prefixed with the phone's time, to the application's debug program.
#pragma once

#include <string>

class ClockServiceIfc;

class AGPRemoteTraceHandler {
public:
    AGPRemoteTraceHandler() = default;
    virtual ~AGPRemoteTraceHandler() = default;

    bool startRemoteTraceHandler(ClockServiceIfc* clock);
    // Posts `text` to `url` when remote debugging is "Enabled"; failures are not reported.
    void remoteTrace(const std::string& url, const std::string& text);
    // Posts `text` to the application's remote-trace URL.
    void remoteTrace(const std::string& text);
    // Whether remote debugging is "Enabled": callers check it before building a large text.
    bool isEnabled() const;

private:
    ClockServiceIfc* mClockService = nullptr;
};
