// Lets the emulator's developer panel watch every transfer of the HTTP service.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "http/HttpServiceHeaders.h"

// What one call of HttpServiceIfc::request did, as reported to a traffic observer.
struct HttpTransferRecord {
    std::string method;                    // "GET" or "POST" as asked (a redirection may turn POST into GET)
    std::string requestedUrl;              // the URL the caller asked for
    std::string finalUrl;                  // the URL finally requested (after redirections)
    std::vector<std::string> redirections; // every URL requested after the first, in order
    bool success = false;                  // request() returned 1
    int connectionStatus = -1;             // the status set on failure (0..12); -1 on success
    unsigned short httpStatus = 0;         // status code of the last response, 0 if none
    HttpServiceHeaders responseHeaders;    // headers of the final response
    std::uint64_t bodySize = 0;            // bytes of the final response body
    std::string body;                      // its first bytes, at most CurlHttpService::kObservedBodyLimit
    bool bodyTruncated = false;            // body holds less than bodySize bytes
    std::string requestBody;               // the body sent (POST), "" for GET
    long durationMs = 0;                   // wall time of the whole request, redirections included
    std::string errorDetail;               // libcurl's explanation of a failure, "" on success
};

class HttpTrafficObserver {
public:
    virtual ~HttpTrafficObserver() = default;
    // Called once per request() call, after the transfer has ended (successful or not), on the
    // thread that called request(), holding no lock of the service: it may call the service.
    virtual void transferFinished(const HttpTransferRecord& record) = 0;
};
