// The platform's HTTP service: one synchronous HTTP transfer per call, body into a download file.
#pragma once

#include <cstdint>
#include <string>

#include "http/HttpServiceHeaders.h"
#include "services/PlatformService.h"

// The phonelet's server connection reaches the HTTP service through this interface.
// The implementation is CurlHttpService.
class HttpServiceIfc : public PlatformService {
public:
    // Connection status values set by request() on failure, with the text the phonelet shows for
    // each. On success the
    // connection status is left as the caller preset it.
    enum ConnectionStatus {
        STATUS_UNKNOWN_ERROR = 0,        // "Unknown network error occurred"
        STATUS_URI_PARSER_FAILED = 1,    // "URI parser failed"
        STATUS_NAME_RESOLUTION = 2,      // "Hostname to IP address conversion failed"
        STATUS_CERTIFICATE = 3,          // "Valid certificate not found"
        STATUS_TLS_HANDSHAKE = 4,        // "Could not establish secure connection"
        STATUS_CONNECTION = 5,           // "Network connection error"
        STATUS_PROXY_TUNNEL = 6,         // "Could not establish secure tunnel: " + proxy
        STATUS_REQUEST_FAILED = 7,       // "HTTP request failed"
        STATUS_RESPONSE_FAILED = 8,      // "HTTP response failed"
        STATUS_INVALID_CONTENT = 9,      // "Invalid HTTP response content"
        STATUS_HTTP_ERROR = 10,          // "HTTP status code: " + code (400 or more)
        STATUS_INVALID_REDIRECTION = 11, // "Invalid redirection detected"
        STATUS_REDIRECTION_LOOP = 12,    // "Redirection loop detected"
        // The body (after decompression) grew beyond maxDocumentSize(); the transfer was ended
        // there and the download file holds no more than the limit.
        STATUS_DOCUMENT_TOO_LARGE = 15, // "Document larger than the limit of N bytes"
    };

    // Largest response body, counted after decompression, that request() accepts (bytes).
    static constexpr std::uint64_t kDefaultMaxDocumentSize = 4 * 1024 * 1024;

    // Bits of request()'s `flags` argument, the platform's own choice (the phonelet always passes
    // 1, and the meaning of the value is left to the platform):
    //   bit 0 (1) FLAG_FOLLOW_REDIRECTIONS: follow 301, 302, 303, 307 and 308 responses, checking
    //             each Location (status 11) and the chain (status 12). Without it a redirection
    //             response is the result: success, its status code in `httpStatus`, its headers
    //             (with "location") in `responseHeaders`, its body in the download file.
    //   Other bits are reserved and ignored.
    static constexpr int FLAG_FOLLOW_REDIRECTIONS = 1;

    ~HttpServiceIfc() override = default;

    // Performs one HTTP transfer and waits for its end. Arguments:
    //   proxyAddr, proxyPort  HTTP proxy; used only when both are non-empty.
    //   method                "GET" or "POST" (anything else fails with status 0).
    //   url                   in: the URL to request (http or https); out: the URL finally
    //                         requested after redirections (unchanged when none was followed).
    //   timeoutSeconds        limit for the whole transfer, redirections included; 0 or less: none.
    //                         The platform may lower it by a setting of its own (CurlHttpService::
    //                         setTimeoutCap), never raise it.
    //   body, contentType     request body and its Content-Type; used only for POST.
    //   language              sent as Accept-Language when not empty.
    //   flags                 see FLAG_FOLLOW_REDIRECTIONS.
    //   connectionHandle      in/out: -1 (or an id the service does not know) gets a new id;
    //                         passing the id back reuses the connection state (keep-alive).
    //   connectionStatus      out: set on failure to one of the ConnectionStatus values.
    //   httpStatus            out: the status code of the last response received (0 if none).
    //   requestHeaders        extra header lines to send.
    //   responseHeaders       out: the headers of the final response (not of the redirections'),
    //                         lower-case names, every value of a repeated header.
    //   downloadFile          receives the body of the final response; overwritten by every
    //                         request, created with permissions 0600. "" discards the body.
    // Returns 1 on success (final HTTP status below 400), 0 on failure.
    virtual int request(const std::string& proxyAddr, const std::string& proxyPort, const std::string& method,
                        std::string& url, int timeoutSeconds, const std::string& body,
                        const std::string& language, const std::string& contentType, int flags,
                        int& connectionHandle, int& connectionStatus, unsigned short& httpStatus,
                        HttpServiceHeaders& requestHeaders, HttpServiceHeaders& responseHeaders,
                        const std::string& downloadFile) = 0;

    // Drops what the service holds for the client that uses `downloadFile`: its connection
    // handle(s) with their open connections, and the download file itself.
    virtual void release(const std::string& downloadFile) = 0;

    // The limit of STATUS_DOCUMENT_TOO_LARGE, for the text the user is shown.
    virtual std::uint64_t maxDocumentSize() const = 0;
};
