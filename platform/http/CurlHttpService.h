// The platform's HTTP service on libcurl.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "http/HttpServiceIfc.h"
#include "http/HttpTrafficObserver.h"

// One synchronous transfer per request() call, on the caller's thread.
//
// Connections: every connection handle id stands for one libcurl easy handle that the service
// keeps between calls, so keep-alive connections (and the DNS and TLS session caches of that
// handle) are reused by the next request with the same id. Ids start at 1; -1 or an unknown id
// gets a new one, written back to the caller.
//
// Redirections are followed by the service itself (libcurl's own following is off), so that every
// Location is checked and the final URL is known. See HttpServiceIfc for the arguments and
// CurlHttpService.cpp for the mapping of libcurl's errors onto the connection statuses.
//
// Download file: opened without following a symbolic link (a link planted at the predictable
// path in /tmp fails the request instead of redirecting our write) and set to mode 0600. It is
// overwritten in place and cut to the body's length after the transfer, never truncated to zero
// first: ext4 flushes a file to disk when it is closed after such a truncation, which made every
// small request on a disk-backed /tmp take milliseconds.
//
// TLS: peers are verified (certificate chain and host name) against the system's CA store
// (libcurl's default bundle), plus the certificates of an optional extra CA file (PEM) from the
// platform configuration.
//
// Threads: request() may be called concurrently by several threads with different connection
// handles; calls with the same handle are serialised. Every other operation may be called from
// any thread at any time, except that the service must outlive every request() under way.
class CurlHttpService : public HttpServiceIfc {
public:
    // Largest part of a response body handed to the traffic observer (1 MiB).
    static constexpr std::size_t kObservedBodyLimit = 1024 * 1024;
    // Most redirections followed in one request; one more gives status 12.
    static constexpr int kMaxRedirections = 10;

    // `extraCaFile`: path of a PEM file whose certificates are trusted in addition to the system's
    // CA store; "" for none.
    explicit CurlHttpService(const std::string& extraCaFile = "");
    ~CurlHttpService() override;
    CurlHttpService(const CurlHttpService&) = delete;
    CurlHttpService& operator=(const CurlHttpService&) = delete;

    int request(const std::string& proxyAddr, const std::string& proxyPort, const std::string& method,
                std::string& url, int timeoutSeconds, const std::string& body, const std::string& language,
                const std::string& contentType, int flags, int& connectionHandle, int& connectionStatus,
                unsigned short& httpStatus, HttpServiceHeaders& requestHeaders,
                HttpServiceHeaders& responseHeaders, const std::string& downloadFile) override;
    void release(const std::string& downloadFile) override;
    std::uint64_t maxDocumentSize() const override { return mMaxDocumentSize.load(); }

    // Platform setting: the largest body a request accepts, counted as it arrives and after
    // decompression (a small gzip body may inflate a thousandfold); a larger one ends the transfer
    // with STATUS_DOCUMENT_TOO_LARGE. At least 1 KiB. Applies to the requests started afterwards.
    void setMaxDocumentSize(std::uint64_t bytes);

    // Replaces the extra CA file ("" for none). Applies to the connections opened afterwards; an
    // unreadable file is logged (level 2) and ignored, leaving the system's CA store alone.
    void setExtraCaFile(const std::string& extraCaFile);

    // For the phone's shutdown: makes every transfer under way end within about a second (libcurl
    // calls our progress function at least once a second, and it aborts the transfer once this
    // has been called), and every later request() fail at once. Both fail with status 5
    // ("Network connection error"). Irreversible; may be called from any thread, also while
    // request() calls are blocked in transfers.
    void abortAll();

    // The observer told of every finished request (nullptr: none). Replacing it while requests are
    // under way is safe: a request reports to the observer that was set when it finished.
    void setTrafficObserver(std::shared_ptr<HttpTrafficObserver> observer);

    // Platform setting, which the emulator may expose: every request's time-out is at most `seconds`
    // (also one that asked for none); 0 or less lifts the cap. The phonelet's own time-outs are long
    // (a minute for a document), so a test or a developer who wants a stalled server to be noticed
    // quickly lowers them here rather than in the phonelet. Applies to the requests started
    // afterwards; may be called from any thread.
    void setTimeoutCap(int seconds);

    // Number of connection handles the service holds (for tests and the developer panel).
    int handleCount() const;
    // Requests between their start and the observer's report (for the emulator's settled signal).
    int transfersUnderWay() const { return mTransfersUnderWay.load(); }

private:
    struct Handle;

    std::shared_ptr<Handle> acquireHandle(int& connectionHandle, const std::string& downloadFile);

    mutable std::mutex mMutex;
    std::map<int, std::shared_ptr<Handle>> mHandles;
    std::set<std::string> mDownloadFiles; // every download file written, for release()
    int mNextHandleId = 1;
    std::shared_ptr<const std::string> mCaBlob; // system bundle + extra CA file; null: system only
    std::shared_ptr<HttpTrafficObserver> mObserver;
    std::atomic<bool> mAborted{false};
    std::atomic<int> mTimeoutCap{0};
    std::atomic<int> mTransfersUnderWay{0};
    std::atomic<std::uint64_t> mMaxDocumentSize{kDefaultMaxDocumentSize};
};
