// The one HTTP client of the phonelet: requests through the platform's HTTP service, one at a time.
#include "AGPServerConnection.h"

#define AGP_LOG_MODULE "AGPServerConnection"
#define AGP_LOG_SOURCE "./src/AGPServerConnection.cpp"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>

#include <limits>
#include <new>
#include <unistd.h>

#include "AGPDataObserver.h"
#include "AGPLog.h"
#include "AGPPhoneletManager.h"
#include "AGPUtils.h"
#include "http/HttpServiceHeaders.h"
#include "http/HttpServiceIfc.h"
#include "threads/Semaphore.h"
#include "uri/GPALAdmin.h"

namespace {

const char* const kDownloadFilePrefix = "/tmp/AGPApp-";
const char* const kContentType = "text/plain";
const size_t kMaxUrlInErrorText = 1024;
// Leaves room in a 255-byte file name for the prefix and the process id.
const size_t kMaxNameInFileName = 200;

std::string shortenUrl(const std::string& url) {
    return url.size() > kMaxUrlInErrorText ? url.substr(0, kMaxUrlInErrorText) + "..." : url;
}

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

} // namespace

AGPServerConnection::AGPServerConnection()
    : mHttpService(nullptr), mConnectionHandle(-1), mRequestLock(new Semaphore(1, 1, false)) {}

AGPServerConnection::~AGPServerConnection() {
    if (!mDownloadFile.empty()) {
        if (mHttpService != nullptr) {
            mHttpService->release(mDownloadFile);
        }
        if (startsWith(mDownloadFile, kDownloadFilePrefix)) {
            std::remove(mDownloadFile.c_str());
        }
    }
    delete mRequestLock;
}

bool AGPServerConnection::startAGPServerConnection(HttpServiceIfc* service) {
    AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
    if (configuration == nullptr) {
        AGP_LOG(2, "AGPServerConnection startup failed: can't find AGPDataObserver");
        return false;
    }
    if (service == nullptr) {
        AGP_LOG(2, "AGPServerConnection startup failed: can't find Http Service");
        return false;
    }
    mHttpService = service;
    mDownloadFile = downloadFileFor(configuration->getAppName());
    AGP_LOG(5, "AGPServerConnection started successfully");
    return true;
}

// The application's name may hold anything ("/", blanks, any byte): percent-encoding keeps it one
// file name and tells different names apart. The process id keeps two phones on one machine
// from sharing a file; a very long name is cut and keeps a hash of the rest.
std::string AGPServerConnection::downloadFileFor(const std::string& appName) {
    std::string safe;
    GPALAdmin::encodeUri(appName, safe, true, true);
    if (safe.size() > kMaxNameInFileName) {
        char hash[17];
        std::snprintf(hash, sizeof hash, "%016zx", std::hash<std::string>()(appName));
        safe = safe.substr(0, kMaxNameInFileName - 17) + "~" + hash;
    }
    return kDownloadFilePrefix + safe + "-" + std::to_string(::getpid());
}

int AGPServerConnection::getHttpData(const std::string& url, HTTP_DATA_TYPE type, char*& data,
                                     unsigned int& size, HttpServiceHeaders& headers,
                                     std::string& errorText) {
    return receiveHttpData(url, GET, type, "", data, size, headers, errorText);
}

int AGPServerConnection::postHttpData(const std::string& url, HTTP_DATA_TYPE type, const std::string& body,
                                      char*& data, unsigned int& size, HttpServiceHeaders& headers,
                                      std::string& errorText) {
    return receiveHttpData(url, POST, type, body, data, size, headers, errorText);
}

int AGPServerConnection::receiveHttpData(const std::string& url, HTTP_METHOD method, HTTP_DATA_TYPE type,
                                         const std::string& body, char*& data, unsigned int& size,
                                         HttpServiceHeaders& headers, std::string& errorText) {
    errorText.clear();
    delete[] data;
    data = nullptr;
    size = 0;
    AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
    if (configuration == nullptr) {
        AGP_LOG(2, "AGPServerConnection: Can't get AGPDataObserver");
        return 0;
    }
    if (mHttpService == nullptr) {
        AGP_LOG(2, "AGPServerConnection: Can't get Http Service");
        return 0;
    }
    const std::string language = configuration->getLanguage();
    const bool useProxy = configuration->getProxyEnabled() == "Yes";
    const std::string proxyAddr = useProxy ? configuration->getProxyAddr() : "";
    const std::string proxyPort = useProxy ? configuration->getProxyPort() : "";
    const std::string methodText = method == POST ? "POST" : "GET";
    const int timeout = type == XML_DOCUMENT ? 60 : 10;
    std::string requestUrl = url;
    int connectionStatus = 14;
    unsigned short httpStatus = 0;
    HttpServiceHeaders requestHeaders;

    int result = 0;
    mRequestLock->take(-1);
    if (url.size() > kMaxUrlLength) {
        AGP_LOG(2, "URL of %zu bytes not requested (at most %zu)", url.size(), kMaxUrlLength);
        connectionStatus = 1;
    } else {
        result =
            mHttpService->request(proxyAddr, proxyPort, methodText, requestUrl, timeout,
                                  method == POST ? body : "", language, kContentType, 1, mConnectionHandle,
                                  connectionStatus, httpStatus, requestHeaders, headers, mDownloadFile);
    }
    if (result == 1 && !readDownloadFile(data, size)) {
        connectionStatus = 13;
        result = 0;
    }
    mRequestLock->give();
    if (result != 0) {
        return result;
    }

    const std::string shortRequested = shortenUrl(requestUrl);
    const std::string shortOriginal = shortenUrl(url);
    errorText = failureReason(connectionStatus, httpStatus, proxyAddr, proxyPort) +
                "\nRequested URI: " + shortRequested;
    if (shortRequested != shortOriginal) {
        errorText += "\nOriginal URI: " + shortOriginal;
    }
    AGP_LOG(5, "Download of [%s] failed, statusCode: %d, connectionStatus: %d", shortRequested.c_str(),
            httpStatus, connectionStatus);
    return 0;
}

// The HTTP service has bounded the body already; the checks here keep a file that changed under us
// (or a service without a bound) from wrapping the size or leaving part of the array unread.
bool AGPServerConnection::readDownloadFile(char*& data, unsigned int& size) {
    std::ifstream file(mDownloadFile, std::ios::binary | std::ios::ate);
    if (!file) {
        AGP_LOG(5, "Failed to open file [%s]\n", mDownloadFile.c_str());
        return false;
    }
    const std::streamoff length = file.tellg();
    const std::uint64_t limit = mHttpService->maxDocumentSize();
    if (length < 0 || static_cast<std::uint64_t>(length) > std::numeric_limits<unsigned int>::max() ||
        (limit > 0 && static_cast<std::uint64_t>(length) > limit)) {
        AGP_LOG(2, "Download file [%s] has an unusable length of %lld bytes\n", mDownloadFile.c_str(),
                static_cast<long long>(length));
        return false;
    }
    file.seekg(0);
    char* bytes = new (std::nothrow) char[static_cast<size_t>(length) + 1];
    if (bytes == nullptr) {
        AGP_LOG(2, "No memory for a download of %lld bytes\n", static_cast<long long>(length));
        return false;
    }
    file.read(bytes, static_cast<std::streamsize>(length));
    if (file.gcount() != static_cast<std::streamsize>(length)) {
        AGP_LOG(2, "Download file [%s]: read %lld of %lld bytes\n", mDownloadFile.c_str(),
                static_cast<long long>(file.gcount()), static_cast<long long>(length));
        delete[] bytes;
        return false;
    }
    data = bytes;
    size = static_cast<unsigned int>(length);
    AGP_LOG(5, "Download complete, received %d bytes\n", static_cast<int>(size));
    return true;
}

std::string AGPServerConnection::failureReason(int connectionStatus, unsigned short httpStatus,
                                               const std::string& proxyAddr,
                                               const std::string& proxyPort) const {
    switch (connectionStatus) {
    case 0:
        return "Unknown network error occurred";
    case 1:
        return "URI parser failed";
    case 2:
        return "Hostname to IP address conversion failed";
    case 3:
        return "Valid certificate not found";
    case 4:
        return "Could not establish secure connection";
    case 5:
        return "Network connection error";
    case 6:
        return "Could not establish secure tunnel: " + proxyAddr + ":" + proxyPort;
    case 7:
        return "HTTP request failed";
    case 8:
        return "HTTP response failed";
    case 9:
        return "Invalid HTTP response content";
    case 10:
        return "HTTP status code: " + std::to_string(httpStatus);
    case 11:
        return "Invalid redirection detected";
    case 12:
        return "Redirection loop detected";
    case 15:
        return "Document larger than the limit of " + std::to_string(mHttpService->maxDocumentSize()) +
               " bytes";
    default:
        return "Unknown error occurred";
    }
}

long AGPServerConnection::getCacheValidityFromHeaders(HttpServiceHeaders& headers) {
    const long now = static_cast<long>(time(nullptr));
    if (headers.getNumOfHeaders() == 0) {
        return CACHE_TIMEVALID_FOREVER;
    }
    long maxAge = CACHE_TIMEVALID_FOREVER;
    const std::string maxAgePrefix = "max-age=";
    for (const std::string& value : headers.getHeaders("cache-control", 0)) {
        std::string lower = value;
        AGPUtils::toLowerCase(lower);
        if (startsWith(lower, "no-cache")) {
            return CACHE_TIMEVALID_NEVER;
        }
        if (startsWith(lower, maxAgePrefix) && lower.size() > maxAgePrefix.size()) {
            long seconds = 0;
            if (!AGPUtils::stringToLong(value.substr(maxAgePrefix.size()), seconds) || seconds <= 0) {
                return CACHE_TIMEVALID_NEVER;
            }
            maxAge = std::min(maxAge, seconds);
        }
    }
    if (maxAge < CACHE_TIMEVALID_FOREVER) {
        return now + maxAge;
    }
    long date = now;
    const std::string dateText = headers.getHeader("date", 0);
    long parsedDate = 0;
    if (!dateText.empty() && AGPUtils::convertRFC2822TimeAndDateToUnixTime(dateText, parsedDate)) {
        date = parsedDate;
    }
    long delta = CACHE_TIMEVALID_FOREVER;
    for (const std::string& value : headers.getHeaders("expires", 0)) {
        long expiry = 0;
        if (!AGPUtils::convertRFC2822TimeAndDateToUnixTime(value, expiry)) {
            return CACHE_TIMEVALID_NEVER;
        }
        delta = std::min(delta, expiry - date);
        if (date >= expiry) {
            return CACHE_TIMEVALID_NEVER;
        }
    }
    return delta < CACHE_TIMEVALID_FOREVER ? now + delta : CACHE_TIMEVALID_FOREVER;
}

void AGPServerConnection::localIPAddressChanged() {
    AGP_LOG(5, "Local IP Address has been changed");
    if (!mDownloadFile.empty() && mHttpService != nullptr) {
        mHttpService->release(mDownloadFile);
    }
}
