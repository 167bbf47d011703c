// The one HTTP client of the phonelet: requests through the platform's HTTP service, one at a time.
#pragma once

#include <cstdint>
#include <string>

class HttpServiceHeaders;
class HttpServiceIfc;
class Semaphore;

class AGPServerConnection {
public:
    enum HTTP_METHOD { GET = 0, POST = 1 };
    enum HTTP_DATA_TYPE { XML_DOCUMENT = 0, IMAGE = 1, REMOTE_TRACE = 2 };

    static constexpr std::int32_t CACHE_TIMEVALID_NEVER = INT32_MIN;
    static constexpr std::int32_t CACHE_TIMEVALID_FOREVER = INT32_MAX;
    // Longest URL requested: a text field's value ends up in the URL of a GET, and servers refuse
    // far shorter ones anyway. A longer one fails as "URI parser failed" without being sent.
    static constexpr size_t kMaxUrlLength = 8192;

    AGPServerConnection();
    virtual ~AGPServerConnection();
    AGPServerConnection(const AGPServerConnection&) = delete;
    AGPServerConnection& operator=(const AGPServerConnection&) = delete;

    bool startAGPServerConnection(HttpServiceIfc* service);

    // 1: success, `data` (new[], owned by the caller, not terminated) holds `size` bytes of body.
    // 0: failure, `errorText` says why. Any other result of the HTTP service is passed through.
    int getHttpData(const std::string& url, HTTP_DATA_TYPE type, char*& data, unsigned int& size,
                    HttpServiceHeaders& headers, std::string& errorText);
    int postHttpData(const std::string& url, HTTP_DATA_TYPE type, const std::string& body, char*& data,
                     unsigned int& size, HttpServiceHeaders& headers, std::string& errorText);
    int receiveHttpData(const std::string& url, HTTP_METHOD method, HTTP_DATA_TYPE type,
                        const std::string& body, char*& data, unsigned int& size, HttpServiceHeaders& headers,
                        std::string& errorText);

    // Until when a response may be served from the cache: seconds since 1970, or NEVER / FOREVER.
    static long getCacheValidityFromHeaders(HttpServiceHeaders& headers);

    void localIPAddressChanged();

    const std::string& getDownloadFile() const { return mDownloadFile; }
    // "/tmp/AGPApp-", the name made safe for a file name, "-" and this process's id.
    static std::string downloadFileFor(const std::string& appName);

private:
    bool readDownloadFile(char*& data, unsigned int& size);
    std::string failureReason(int connectionStatus, unsigned short httpStatus, const std::string& proxyAddr,
                              const std::string& proxyPort) const;

    HttpServiceIfc* mHttpService;
    int mConnectionHandle;
    Semaphore* mRequestLock;
    std::string mDownloadFile;
};
