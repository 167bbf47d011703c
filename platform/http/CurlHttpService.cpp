// The platform's HTTP service on libcurl.
#include "http/CurlHttpService.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

#include "logging/Log.h"

#define HTTP_LOG(level, ...)                                                                                 \
    do {                                                                                                     \
        if (loggingOnAppUni("HttpService", (level))) {                                                       \
            logAppUni("HttpService", __FILE__, (level), __LINE__, __VA_ARGS__);                              \
        }                                                                                                    \
    } while (false)

namespace {

using Clock = std::chrono::steady_clock;

const char* const kUserAgent = "AGP";

void initialiseCurlOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

std::string trim(const std::string& text) {
    const char* const blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return "";
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string lowerCase(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

// A header value without line breaks, so that no value can add header lines of its own.
std::string singleLine(const std::string& text) {
    std::string clean;
    clean.reserve(text.size());
    for (char c : text) {
        if (c != '\r' && c != '\n') {
            clean += c;
        }
    }
    return clean;
}

bool readFile(const std::string& path, std::string& content) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return false;
    }
    content.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

// ---- URLs, through libcurl's URL API ----

class CurlUrl {
public:
    CurlUrl() : mHandle(curl_url()) {}
    ~CurlUrl() { curl_url_cleanup(mHandle); }
    CurlUrl(const CurlUrl&) = delete;
    CurlUrl& operator=(const CurlUrl&) = delete;

    // Sets a complete URL, or, once one is set, resolves a relative reference against it.
    CURLUcode set(const std::string& url, unsigned int flags) {
        return mHandle == nullptr ? CURLUE_OUT_OF_MEMORY
                                  : curl_url_set(mHandle, CURLUPART_URL, url.c_str(), flags);
    }
    std::string get(CURLUPart part) const {
        char* text = nullptr;
        if (mHandle == nullptr || curl_url_get(mHandle, part, &text, 0) != CURLUE_OK || text == nullptr) {
            return "";
        }
        std::string result(text);
        curl_free(text);
        return result;
    }
    // The URL without its fragment: what identifies a resource in a redirection chain.
    std::string key() {
        curl_url_set(mHandle, CURLUPART_FRAGMENT, nullptr, 0);
        return get(CURLUPART_URL);
    }
    bool isHttp() const {
        const std::string scheme = lowerCase(get(CURLUPART_SCHEME));
        return scheme == "http" || scheme == "https";
    }

private:
    CURLU* mHandle;
};

// Checks a URL given by the caller: it must parse and be http or https.
bool checkRequestUrl(const std::string& url, std::string& key, std::string& why) {
    CurlUrl parsed;
    const CURLUcode code = parsed.set(url, 0);
    if (code != CURLUE_OK) {
        why = std::string("malformed URL: ") + curl_url_strerror(code);
        return false;
    }
    if (!parsed.isHttp()) {
        why = "not an http or https URL";
        return false;
    }
    key = parsed.key();
    return true;
}

// Resolves a Location value against the URL that answered with it. Fails for a missing or
// malformed value and for a target that is not http or https.
bool resolveLocation(const std::string& base, const std::string& location, std::string& target,
                     std::string& key, std::string& why) {
    if (location.empty()) {
        why = "redirection without Location";
        return false;
    }
    CurlUrl resolved;
    CURLUcode code = resolved.set(base, 0);
    if (code == CURLUE_OK) {
        // Like a browser, blanks and bytes outside ASCII in a Location are percent-encoded (as
        // %20, which libcurl would write as "+" in a query).
        std::string encoded;
        for (char c : location) {
            encoded += c == ' ' ? std::string("%20") : std::string(1, c);
        }
        code = resolved.set(encoded, CURLU_URLENCODE);
    }
    if (code != CURLUE_OK) {
        why = "malformed Location [" + location + "]: " + curl_url_strerror(code);
        return false;
    }
    if (!resolved.isHttp()) {
        why = "Location [" + location + "] is not http or https";
        return false;
    }
    target = resolved.get(CURLUPART_URL);
    key = resolved.key();
    if (target.empty() || key.empty()) {
        why = "malformed Location [" + location + "]";
        return false;
    }
    return true;
}

bool isRedirection(long code) {
    return code == 301 || code == 302 || code == 303 || code == 307 || code == 308;
}

// ---- Mapping of libcurl's results onto the connection statuses ----
//
// Connection status  libcurl result
//  1 URI parser       CURLE_URL_MALFORMAT, CURLE_UNSUPPORTED_PROTOCOL; also a URL refused before
//                     the transfer (unparsable, or a scheme other than http and https)
//  2 name resolution  CURLE_COULDNT_RESOLVE_HOST
//  3 certificate      CURLE_PEER_FAILED_VERIFICATION (untrusted, expired or wrong-name
//                     certificate), CURLE_SSL_CACERT_BADFILE, CURLE_SSL_ISSUER_ERROR,
//                     CURLE_SSL_PINNEDPUBKEYNOTMATCH, CURLE_SSL_INVALIDCERTSTATUS,
//                     CURLE_SSL_CRL_BADFILE, CURLE_SSL_CERTPROBLEM, CURLE_SSL_CLIENTCERT
//  4 TLS handshake    CURLE_SSL_CONNECT_ERROR, CURLE_SSL_CIPHER, CURLE_SSL_ENGINE_*,
//                     CURLE_USE_SSL_FAILED, CURLE_SSL_SHUTDOWN_FAILED
//  5 connection       CURLE_COULDNT_CONNECT (refused, unreachable), CURLE_OPERATION_TIMEDOUT (the
//                     time-out, whatever the phase: connecting, waiting or receiving),
//                     CURLE_ABORTED_BY_CALLBACK (abortAll), CURLE_INTERFACE_FAILED,
//                     CURLE_UNRECOVERABLE_POLL
//  6 proxy            with a proxy in use: CURLE_COULDNT_RESOLVE_PROXY, CURLE_PROXY, a CONNECT
//                     answered with anything but 2xx (whatever libcurl returns then), and
//                     CURLE_COULDNT_CONNECT (the proxy is the only party we connect to), and a
//                     proxy port that is not a number from 1 to 65535; the text of status 6
//                     names the proxy, which is what the user must check
//  7 request          CURLE_SEND_ERROR, CURLE_SEND_FAIL_REWIND, CURLE_READ_ERROR: the
//                     connection stood but the request could not be sent
//  8 response         CURLE_RECV_ERROR (e.g. reset while reading), CURLE_GOT_NOTHING (closed
//                     without a reply), CURLE_PARTIAL_FILE (reply cut off in the middle),
//                     CURLE_HTTP2, CURLE_HTTP2_STREAM, CURLE_HTTP3
//  9 content          CURLE_WEIRD_SERVER_REPLY (not HTTP), CURLE_BAD_CONTENT_ENCODING (gzip, br
//                     or zstd body that does not decode)
// 10 HTTP status      no libcurl error, final status 400 or more (httpStatus holds it)
// 11, 12              our own redirection checks (see request)
// 15 too large        the body, decoded, outgrew the largest document (CURLE_FILESIZE_EXCEEDED
//                     for an announced length, our write function's refusal for the rest)
//  0 unknown          everything else, among them CURLE_WRITE_ERROR (the download file cannot be
//                     written: a local fault, logged with its reason) and CURLE_OUT_OF_MEMORY
int statusForCurlResult(CURLcode code, bool proxyInUse, long connectCode) {
    if (proxyInUse &&
        (code == CURLE_COULDNT_RESOLVE_PROXY || code == CURLE_PROXY || code == CURLE_COULDNT_CONNECT ||
         (connectCode != 0 && (connectCode < 200 || connectCode >= 300)))) {
        return HttpServiceIfc::STATUS_PROXY_TUNNEL;
    }
    switch (code) {
    case CURLE_URL_MALFORMAT:
    case CURLE_UNSUPPORTED_PROTOCOL:
        return HttpServiceIfc::STATUS_URI_PARSER_FAILED;
    case CURLE_COULDNT_RESOLVE_HOST:
        return HttpServiceIfc::STATUS_NAME_RESOLUTION;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CLIENTCERT:
        return HttpServiceIfc::STATUS_CERTIFICATE;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_USE_SSL_FAILED:
    case CURLE_SSL_SHUTDOWN_FAILED:
        return HttpServiceIfc::STATUS_TLS_HANDSHAKE;
    case CURLE_COULDNT_CONNECT:
    case CURLE_OPERATION_TIMEDOUT:
    case CURLE_ABORTED_BY_CALLBACK:
    case CURLE_INTERFACE_FAILED:
    case CURLE_UNRECOVERABLE_POLL:
        return HttpServiceIfc::STATUS_CONNECTION;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_PROXY:
        return HttpServiceIfc::STATUS_PROXY_TUNNEL;
    case CURLE_SEND_ERROR:
    case CURLE_SEND_FAIL_REWIND:
    case CURLE_READ_ERROR:
        return HttpServiceIfc::STATUS_REQUEST_FAILED;
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
    case CURLE_HTTP3:
        return HttpServiceIfc::STATUS_RESPONSE_FAILED;
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
        return HttpServiceIfc::STATUS_INVALID_CONTENT;
    default:
        return HttpServiceIfc::STATUS_UNKNOWN_ERROR;
    }
}

// ---- One response, as the libcurl callbacks see it ----

struct Response {
    int fd = -1;                     // download file, -1: body discarded
    std::string* captured = nullptr; // first bytes of the body for the observer, null: none
    std::uint64_t bodySize = 0;
    std::uint64_t maxBodySize = 0; // 0: unbounded
    bool tooLarge = false;
    int writeErrno = 0;
    HttpServiceHeaders headers;

    void reset() {
        bodySize = 0;
        tooLarge = false;
        writeErrno = 0;
        headers.clear();
        if (captured != nullptr) {
            captured->clear();
        }
    }
};

size_t onBody(char* data, size_t size, size_t count, void* user) {
    Response& response = *static_cast<Response*>(user);
    const size_t length = size * count;
    // libcurl hands over decoded bytes, so this also bounds what a compressed body inflates to.
    if (response.maxBodySize > 0 && length > response.maxBodySize - response.bodySize) {
        response.tooLarge = true;
        return 0; // libcurl ends the transfer with CURLE_WRITE_ERROR
    }
    if (response.fd >= 0) {
        size_t written = 0;
        while (written < length) {
            const ssize_t result = ::write(response.fd, data + written, length - written);
            if (result < 0 && errno == EINTR) {
                continue;
            }
            if (result <= 0) {
                response.writeErrno = result < 0 ? errno : ENOSPC;
                return 0; // libcurl ends the transfer with CURLE_WRITE_ERROR
            }
            written += static_cast<size_t>(result);
        }
    }
    response.bodySize += length;
    if (response.captured != nullptr && response.captured->size() < CurlHttpService::kObservedBodyLimit) {
        response.captured->append(
            data, std::min(length, CurlHttpService::kObservedBodyLimit - response.captured->size()));
    }
    return length;
}

// Called for every header line of every response libcurl reads, the status line included, so a
// status line starts the collection afresh: what remains is the last response's (not that of a
// proxy's CONNECT or of an informational 1xx response).
size_t onHeader(char* data, size_t size, size_t count, void* user) {
    Response& response = *static_cast<Response*>(user);
    const size_t length = size * count;
    std::string line(data, length);
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.pop_back();
    }
    if (line.compare(0, 5, "HTTP/") == 0) {
        response.headers.clear();
    } else if (!line.empty() && (line[0] == ' ' || line[0] == '\t')) {
        response.headers.appendToLastValue(" " + trim(line));
    } else {
        const std::size_t colon = line.find(':');
        if (colon != std::string::npos && colon > 0) {
            const std::string name = trim(line.substr(0, colon));
            if (!name.empty()) {
                response.headers.addHeader(name, trim(line.substr(colon + 1)));
            }
        }
    }
    return length;
}

int onProgress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<const std::atomic<bool>*>(user)->load() ? 1 : 0;
}

curl_slist* appendLine(curl_slist* list, const std::string& line) {
    curl_slist* longer = curl_slist_append(list, line.c_str());
    return longer != nullptr ? longer : list;
}

// ---- The transfer with its redirections ----

struct Exchange {
    // In
    std::string method;
    const std::string* body = nullptr;
    std::string language;
    std::string contentType;
    int flags = 0;
    const HttpServiceHeaders* extraHeaders = nullptr;
    int timeoutSeconds = 0;
    bool useProxy = false;
    std::string proxy;
    long proxyPort = 0;
    std::shared_ptr<const std::string> caBlob;
    const std::atomic<bool>* aborted = nullptr;
    // Out
    std::string url; // in: the URL to request; out: the URL last requested
    int status = -1; // connection status on failure, -1 on success
    long httpStatus = 0;
    std::string detail;
    std::vector<std::string> redirections;
};

curl_slist* requestHeaderLines(const Exchange& exchange, bool post) {
    curl_slist* lines = nullptr;
    if (post) {
        // No "Expect: 100-continue" round trip before a large body.
        lines = appendLine(lines, "Expect:");
        if (!exchange.contentType.empty()) {
            lines = appendLine(lines, "Content-Type: " + singleLine(exchange.contentType));
        }
    }
    if (!exchange.language.empty()) {
        lines = appendLine(lines, "Accept-Language: " + singleLine(exchange.language));
    }
    if (exchange.extraHeaders != nullptr) {
        for (const HttpServiceHeaders::Header& header : exchange.extraHeaders->getAllHeaders()) {
            const std::string name = singleLine(header.first);
            const std::string value = singleLine(header.second);
            // libcurl's way of sending a header with an empty value is "Name;".
            lines = appendLine(lines, value.empty() ? name + ";" : name + ": " + value);
        }
    }
    return lines;
}

void performExchange(CURL* easy, Exchange& exchange, Response& response) {
    std::string key;
    std::string why;
    checkRequestUrl(exchange.url, key, why);
    std::set<std::string> visited{key};
    std::string method = exchange.method;
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(exchange.timeoutSeconds);
    int redirections = 0;

    for (;;) {
        // Each response overwrites from the start; the file is cut to its length once, at the end.
        if (response.fd >= 0 && ::lseek(response.fd, 0, SEEK_SET) != 0) {
            exchange.status = HttpServiceIfc::STATUS_UNKNOWN_ERROR;
            exchange.detail = std::string("cannot rewind the download file: ") + std::strerror(errno);
            return;
        }
        response.reset();
        long timeoutMs = 0;
        if (exchange.timeoutSeconds > 0) {
            timeoutMs = static_cast<long>(
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count());
            if (timeoutMs <= 0) {
                exchange.status = HttpServiceIfc::STATUS_CONNECTION;
                exchange.detail = "time-out reached during the redirections";
                return;
            }
        }
        const bool post = method == "POST";

        curl_easy_reset(easy); // keeps the open connections and the caches of the handle
        char errorText[CURL_ERROR_SIZE] = "";
        curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, errorText);
        curl_easy_setopt(easy, CURLOPT_URL, exchange.url.c_str());
        curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
        curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 0L);
        curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy, CURLOPT_USERAGENT, kUserAgent);
        // gzip and deflate: understood by every server, cheap to decode on the phone.
        curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "gzip, deflate");
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, onBody);
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, &response);
        curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, onHeader);
        curl_easy_setopt(easy, CURLOPT_HEADERDATA, &response);
        if (response.maxBodySize > 0) {
            // Refuses at once a response that announces a larger length.
            curl_easy_setopt(easy, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(response.maxBodySize));
        }
        curl_easy_setopt(easy, CURLOPT_NOPROGRESS, 0L);
        curl_easy_setopt(easy, CURLOPT_XFERINFOFUNCTION, onProgress);
        curl_easy_setopt(easy, CURLOPT_XFERINFODATA, exchange.aborted);
        if (timeoutMs > 0) {
            curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, timeoutMs);
        }
        // "" rather than nothing: without a proxy of our own, none from the environment either.
        curl_easy_setopt(easy, CURLOPT_PROXY, exchange.useProxy ? exchange.proxy.c_str() : "");
        if (exchange.useProxy) {
            curl_easy_setopt(easy, CURLOPT_PROXYPORT, exchange.proxyPort);
        }
        if (exchange.caBlob) {
            curl_blob blob{const_cast<char*>(exchange.caBlob->data()), exchange.caBlob->size(),
                           CURL_BLOB_COPY};
            curl_easy_setopt(easy, CURLOPT_CAINFO_BLOB, &blob);
        }
        if (post) {
            curl_easy_setopt(easy, CURLOPT_POST, 1L);
            curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE,
                             static_cast<curl_off_t>(exchange.body->size()));
            curl_easy_setopt(easy, CURLOPT_POSTFIELDS, exchange.body->data());
        } else {
            curl_easy_setopt(easy, CURLOPT_HTTPGET, 1L);
        }
        curl_slist* headerLines = requestHeaderLines(exchange, post);
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headerLines);

        const CURLcode result = curl_easy_perform(easy);
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, nullptr);
        curl_slist_free_all(headerLines);
        curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, nullptr);

        long code = 0;
        curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &code);
        exchange.httpStatus = code;
        if (result != CURLE_OK) {
            long connectCode = 0;
            curl_easy_getinfo(easy, CURLINFO_HTTP_CONNECTCODE, &connectCode);
            exchange.status = statusForCurlResult(result, exchange.useProxy, connectCode);
            if (response.tooLarge || result == CURLE_FILESIZE_EXCEEDED) {
                exchange.status = HttpServiceIfc::STATUS_DOCUMENT_TOO_LARGE;
                exchange.detail = "body larger than " + std::to_string(response.maxBodySize) + " bytes";
            } else if (result == CURLE_WRITE_ERROR && response.writeErrno != 0) {
                exchange.detail =
                    std::string("cannot write the download file: ") + std::strerror(response.writeErrno);
            } else if (result == CURLE_ABORTED_BY_CALLBACK) {
                exchange.detail = "aborted (shutdown)";
            } else {
                exchange.detail = errorText[0] != '\0' ? trim(errorText) : curl_easy_strerror(result);
            }
            return;
        }
        if ((exchange.flags & HttpServiceIfc::FLAG_FOLLOW_REDIRECTIONS) != 0 && isRedirection(code)) {
            std::string target;
            if (!resolveLocation(exchange.url, response.headers.getHeader("location", 0), target, key, why)) {
                exchange.status = HttpServiceIfc::STATUS_INVALID_REDIRECTION;
                exchange.detail = why;
                return;
            }
            if (redirections >= CurlHttpService::kMaxRedirections) {
                exchange.status = HttpServiceIfc::STATUS_REDIRECTION_LOOP;
                exchange.detail =
                    "more than " + std::to_string(CurlHttpService::kMaxRedirections) + " redirections";
                return;
            }
            if (!visited.insert(key).second) {
                exchange.status = HttpServiceIfc::STATUS_REDIRECTION_LOOP;
                exchange.detail = "redirection back to [" + target + "]";
                return;
            }
            ++redirections;
            HTTP_LOG(6, "Redirection %d: HTTP %ld from [%s] to [%s]\n", redirections, code,
                     exchange.url.c_str(), target.c_str());
            // 303 always, 301 and 302 after a POST (as browsers do) continue with a GET; 307 and 308
            // repeat the request as it was.
            if (code == 303 || ((code == 301 || code == 302) && post)) {
                method = "GET";
            }
            exchange.url = target;
            exchange.redirections.push_back(target);
            continue;
        }
        if (code >= 400) {
            exchange.status = HttpServiceIfc::STATUS_HTTP_ERROR;
            exchange.detail = "HTTP status " + std::to_string(code);
        }
        return;
    }
}

std::string defaultCaBundle() {
    CURL* easy = curl_easy_init();
    if (easy == nullptr) {
        return "";
    }
    char* path = nullptr;
    curl_easy_getinfo(easy, CURLINFO_CAINFO, &path);
    std::string result = path != nullptr ? path : "";
    curl_easy_cleanup(easy);
    return result;
}

// libcurl (OpenSSL) uses a CA blob instead of its default bundle, not in addition to it, so the
// blob holds both: the system bundle followed by the extra certificates.
std::shared_ptr<const std::string> loadCaBlob(const std::string& extraCaFile) {
    if (extraCaFile.empty()) {
        return nullptr;
    }
    std::string extra;
    if (!readFile(extraCaFile, extra) || extra.find("-----BEGIN CERTIFICATE-----") == std::string::npos) {
        HTTP_LOG(
            2,
            "Cannot read a PEM certificate from the extra CA file [%s]; using the system's CA store only\n",
            extraCaFile.c_str());
        return nullptr;
    }
    std::string blob;
    const std::string systemBundle = defaultCaBundle();
    if (systemBundle.empty() || !readFile(systemBundle, blob)) {
        HTTP_LOG(2, "Cannot read the system's CA bundle [%s]; trusting only [%s]\n", systemBundle.c_str(),
                 extraCaFile.c_str());
        blob.clear();
    }
    if (!blob.empty() && blob.back() != '\n') {
        blob += '\n';
    }
    blob += extra;
    HTTP_LOG(5, "Trusting the certificates of [%s] besides the system's CA store\n", extraCaFile.c_str());
    return std::make_shared<const std::string>(std::move(blob));
}

bool parsePort(const std::string& text, long& port) {
    if (text.empty() || text.size() > 5 || text.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    port = std::stol(text);
    return port >= 1 && port <= 65535;
}

std::string proxyUrl(const std::string& address) {
    // A bare IPv6 address needs brackets once a port is added.
    if (address.find("://") == std::string::npos && address.find(':') != std::string::npos &&
        address[0] != '[') {
        return "[" + address + "]";
    }
    return address;
}

} // namespace

struct CurlHttpService::Handle {
    std::mutex busy; // held for a whole request with this handle
    CURL* easy = nullptr;
    std::string downloadFile; // of the last request, for release()

    ~Handle() {
        if (easy != nullptr) {
            curl_easy_cleanup(easy);
        }
    }
};

CurlHttpService::CurlHttpService(const std::string& extraCaFile) {
    initialiseCurlOnce();
    mCaBlob = loadCaBlob(extraCaFile);
}

CurlHttpService::~CurlHttpService() = default;

void CurlHttpService::setExtraCaFile(const std::string& extraCaFile) {
    std::shared_ptr<const std::string> blob = loadCaBlob(extraCaFile);
    std::lock_guard<std::mutex> lock(mMutex);
    mCaBlob = std::move(blob);
}

void CurlHttpService::abortAll() {
    mAborted.store(true);
    HTTP_LOG(5, "Aborting every transfer\n");
}

void CurlHttpService::setTrafficObserver(std::shared_ptr<HttpTrafficObserver> observer) {
    std::lock_guard<std::mutex> lock(mMutex);
    mObserver = std::move(observer);
}

void CurlHttpService::setTimeoutCap(int seconds) {
    mTimeoutCap.store(std::max(seconds, 0));
    HTTP_LOG(5, "Time-out cap: %d s (0: none)\n", std::max(seconds, 0));
}

void CurlHttpService::setMaxDocumentSize(std::uint64_t bytes) {
    mMaxDocumentSize.store(std::max<std::uint64_t>(bytes, 1024));
    HTTP_LOG(5, "Largest document: %llu bytes\n", static_cast<unsigned long long>(mMaxDocumentSize.load()));
}

int CurlHttpService::handleCount() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return static_cast<int>(mHandles.size());
}

std::shared_ptr<CurlHttpService::Handle> CurlHttpService::acquireHandle(int& connectionHandle,
                                                                        const std::string& downloadFile) {
    std::lock_guard<std::mutex> lock(mMutex);
    auto found = mHandles.find(connectionHandle);
    if (found == mHandles.end()) {
        auto handle = std::make_shared<Handle>();
        handle->easy = curl_easy_init();
        if (handle->easy == nullptr) {
            return nullptr;
        }
        connectionHandle = mNextHandleId++;
        found = mHandles.emplace(connectionHandle, std::move(handle)).first;
    }
    found->second->downloadFile = downloadFile;
    if (!downloadFile.empty()) {
        mDownloadFiles.insert(downloadFile);
    }
    return found->second;
}

int CurlHttpService::request(const std::string& proxyAddr, const std::string& proxyPort,
                             const std::string& method, std::string& url, int timeoutSeconds,
                             const std::string& body, const std::string& language,
                             const std::string& contentType, int flags, int& connectionHandle,
                             int& connectionStatus, unsigned short& httpStatus,
                             HttpServiceHeaders& requestHeaders, HttpServiceHeaders& responseHeaders,
                             const std::string& downloadFile) {
    const Clock::time_point start = Clock::now();
    ++mTransfersUnderWay;
    struct Finished {
        std::atomic<int>& count;
        ~Finished() { --count; }
    } finished{mTransfersUnderWay};
    const std::string requestedUrl = url;
    std::shared_ptr<HttpTrafficObserver> observer;
    Exchange exchange;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        observer = mObserver;
        exchange.caBlob = mCaBlob;
    }
    exchange.method = method;
    exchange.body = &body;
    exchange.language = language;
    exchange.contentType = contentType;
    exchange.flags = flags;
    exchange.extraHeaders = &requestHeaders;
    const int cap = mTimeoutCap.load();
    exchange.timeoutSeconds = cap > 0 && (timeoutSeconds <= 0 || timeoutSeconds > cap) ? cap : timeoutSeconds;
    exchange.aborted = &mAborted;
    exchange.url = url;
    exchange.useProxy = !proxyAddr.empty() && !proxyPort.empty();
    exchange.proxy = proxyUrl(proxyAddr);
    responseHeaders.clear();

    std::string captured;
    Response response;
    response.captured = observer ? &captured : nullptr;
    response.maxBodySize = mMaxDocumentSize.load();

    std::string key;
    std::string why;
    if (mAborted.load()) {
        exchange.status = STATUS_CONNECTION;
        exchange.detail = "the service has been shut down";
    } else if (method != "GET" && method != "POST") {
        exchange.status = STATUS_UNKNOWN_ERROR;
        exchange.detail = "unsupported method";
    } else if (!checkRequestUrl(url, key, why)) {
        exchange.status = STATUS_URI_PARSER_FAILED;
        exchange.detail = why;
    } else if (exchange.useProxy && !parsePort(proxyPort, exchange.proxyPort)) {
        exchange.status = STATUS_PROXY_TUNNEL;
        exchange.detail = "invalid proxy port";
    } else if (std::shared_ptr<Handle> handle = acquireHandle(connectionHandle, downloadFile); !handle) {
        exchange.status = STATUS_UNKNOWN_ERROR;
        exchange.detail = "cannot create a libcurl handle";
    } else {
        std::lock_guard<std::mutex> busy(handle->busy);
        if (!downloadFile.empty()) {
            response.fd = ::open(downloadFile.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
            if (response.fd < 0) {
                exchange.status = STATUS_UNKNOWN_ERROR;
                exchange.detail =
                    "cannot open the download file [" + downloadFile + "]: " + std::strerror(errno);
            } else {
                ::fchmod(response.fd, 0600); // also when it existed already
            }
        }
        if (exchange.status < 0) {
            performExchange(handle->easy, exchange, response);
        }
        if (response.fd >= 0) {
            if (::ftruncate(response.fd, static_cast<off_t>(response.bodySize)) != 0 && exchange.status < 0) {
                exchange.status = STATUS_UNKNOWN_ERROR;
                exchange.detail = std::string("cannot truncate the download file: ") + std::strerror(errno);
            }
            ::close(response.fd);
        }
        url = exchange.url;
        httpStatus = static_cast<unsigned short>(exchange.httpStatus);
        responseHeaders = response.headers;
    }

    const bool success = exchange.status < 0;
    if (!success) {
        connectionStatus = exchange.status;
    }
    const long durationMs = static_cast<long>(
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
    const std::string redirected = exchange.redirections.empty() ? "" : " (asked for [" + requestedUrl + "])";
    if (success) {
        HTTP_LOG(5, "%s [%s]%s: HTTP %ld, %llu bytes, %ld ms\n", method.c_str(), exchange.url.c_str(),
                 redirected.c_str(), exchange.httpStatus, static_cast<unsigned long long>(response.bodySize),
                 durationMs);
    } else {
        HTTP_LOG(2, "%s [%s]%s failed: connection status %d, HTTP %ld: %s\n", method.c_str(),
                 exchange.url.c_str(), redirected.c_str(), exchange.status, exchange.httpStatus,
                 exchange.detail.c_str());
    }

    if (observer) {
        HttpTransferRecord record;
        record.method = method;
        record.finalUrl = exchange.url;
        record.requestedUrl = requestedUrl;
        record.redirections = exchange.redirections;
        record.success = success;
        record.connectionStatus = exchange.status;
        record.httpStatus = static_cast<unsigned short>(exchange.httpStatus);
        record.responseHeaders = response.headers;
        record.bodySize = response.bodySize;
        record.body = std::move(captured);
        record.bodyTruncated = record.body.size() < record.bodySize;
        record.requestBody = method == "POST" ? body.substr(0, kObservedBodyLimit) : "";
        record.durationMs = durationMs;
        record.errorDetail = exchange.detail;
        observer->transferFinished(record);
    }
    return success ? 1 : 0;
}

void CurlHttpService::release(const std::string& downloadFile) {
    std::vector<std::shared_ptr<Handle>> dropped; // closed outside the lock, or by a request still using one
    bool written = false;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        for (auto it = mHandles.begin(); it != mHandles.end();) {
            if (it->second->downloadFile == downloadFile) {
                dropped.push_back(std::move(it->second));
                it = mHandles.erase(it);
            } else {
                ++it;
            }
        }
        written = mDownloadFiles.erase(downloadFile) > 0;
    }
    if (written && ::unlink(downloadFile.c_str()) != 0 && errno != ENOENT) {
        HTTP_LOG(2, "Cannot remove the download file [%s]: %s\n", downloadFile.c_str(), std::strerror(errno));
    }
    HTTP_LOG(5, "Released %zu connection handle(s) of [%s]\n", dropped.size(), downloadFile.c_str());
}
