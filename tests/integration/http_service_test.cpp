// Tests of the platform HTTP service on libcurl against real servers on loopback: cpp-httplib for
// HTTP and HTTPS (certificate made at test time), and a tiny proxy of our own.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "LoopbackServers.h"
#include "http/CurlHttpService.h"
#include "http/HttpServiceHeaders.h"
#include "logging/LogCapture.h"

namespace {

bool fileExists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

// The routes every test server serves.
class Routes {
public:
    void install(httplib::Server& server) {
        server.set_tcp_nodelay(true); // no Nagle delays between header and body writes
        server.Get("/doc", [](const httplib::Request& req, httplib::Response& res) {
            res.set_header("X-Multi", "one");
            res.set_header("X-Multi", "two");
            res.set_header("Cache-Control", "private, max-age=600");
            res.set_header("X-Seen-Language", req.get_header_value("Accept-Language"));
            res.set_content("hello document", "text/plain");
        });
        server.Get("/short", [](const httplib::Request&, httplib::Response& res) {
            res.set_content("x", "text/plain");
        });
        server.Get("/big", [](const httplib::Request&, httplib::Response& res) {
            res.set_content(std::string(CurlHttpService::kObservedBodyLimit + 1000, 'b'), "text/plain");
        });
        server.Get("/port", [](const httplib::Request& req, httplib::Response& res) {
            res.set_content(std::to_string(req.remote_port), "text/plain");
        });
        auto method = [](const httplib::Request& req, httplib::Response& res) {
            res.set_header("X-Seen-Content-Type", req.get_header_value("Content-Type"));
            res.set_content(req.method + ":" + req.body, "text/plain");
        };
        server.Get("/method", method);
        server.Post("/method", method);
        for (int code : {301, 302, 303, 307, 308}) {
            server.Post("/post" + std::to_string(code),
                        [code](const httplib::Request&, httplib::Response& res) {
                            res.status = code;
                            res.set_header("Location", "/method");
                        });
        }
        // Relative path, absolute path, absolute URL, then the document.
        redirect(server, "/r/a", "b", "a");
        redirect(server, "/r/b", "/r/c", "b");
        server.Get("/r/c", [this](const httplib::Request&, httplib::Response& res) {
            res.status = 302;
            res.set_header("Location", baseUrl() + "/r/d#part");
            res.set_header("X-Hop", "c");
        });
        server.Get("/r/d", [](const httplib::Request&, httplib::Response& res) {
            res.set_header("X-Hop", "d");
            res.set_content("final", "text/plain");
        });
        redirect(server, "/spaces", "/method?text=a b&u=\xc3\xa4%41", "");
        redirect(server, "/loop/a", "/loop/b", "");
        redirect(server, "/loop/b", "/loop/a", "");
        redirect(server, "/self", "/self#again", "");
        // /hop/N?stop=K redirects to /hop/N+1 until N reaches K.
        server.Get(R"(/hop/(\d+))", [](const httplib::Request& req, httplib::Response& res) {
            const int hop = std::stoi(req.matches[1]);
            const int stop = std::stoi(req.get_param_value("stop"));
            if (hop >= stop) {
                res.set_content("hop " + std::to_string(hop), "text/plain");
                return;
            }
            res.status = 302;
            res.set_header("Location", "/hop/" + std::to_string(hop + 1) + "?stop=" + std::to_string(stop));
        });
        server.Get("/nolocation", [](const httplib::Request&, httplib::Response& res) { res.status = 302; });
        redirect(server, "/ftp", "ftp://127.0.0.1/file", "");
        redirect(server, "/badlocation", "http://[::1/x", "");
        server.Get(R"(/status/(\d+))", [](const httplib::Request& req, httplib::Response& res) {
            res.status = std::stoi(req.matches[1]);
            res.set_content("error page", "text/plain");
        });
        server.Get("/slow", [this](const httplib::Request&, httplib::Response& res) {
            waitForRelease();
            res.set_content("late", "text/plain");
        });
        server.Get("/stream", [this](const httplib::Request&, httplib::Response& res) {
            res.set_chunked_content_provider("text/plain", [this](size_t, httplib::DataSink& sink) {
                sink.write("start", 5);
                {
                    std::lock_guard<std::mutex> lock(mMutex);
                    mStreaming = true;
                }
                mChanged.notify_all();
                waitForRelease();
                sink.done();
                return true;
            });
        });
    }

    // Lets every handler that waits (/slow, /stream) finish; called before the server stops.
    void releaseWaiters() {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            mReleased = true;
        }
        mChanged.notify_all();
    }
    void waitUntilStreaming() {
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait(lock, [this] { return mStreaming; });
    }

    // "http://127.0.0.1:port", set once the server listens; handlers read it on server threads.
    void setBase(const std::string& url) {
        std::lock_guard<std::mutex> lock(mBaseMutex);
        mBase = url;
    }
    std::string baseUrl() const {
        std::lock_guard<std::mutex> lock(mBaseMutex);
        return mBase;
    }

private:
    mutable std::mutex mBaseMutex;
    std::string mBase;

    static void redirect(httplib::Server& server, const std::string& path, const std::string& location,
                         const std::string& hop) {
        server.Get(path, [location, hop](const httplib::Request&, httplib::Response& res) {
            res.status = 302;
            res.set_header("Location", location);
            if (!hop.empty()) {
                res.set_header("X-Hop", hop);
            }
            res.set_content("moved", "text/plain");
        });
    }
    void waitForRelease() {
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait_for(lock, std::chrono::seconds(30), [this] { return mReleased; });
    }

    std::mutex mMutex;
    std::condition_variable mChanged;
    bool mReleased = false;
    bool mStreaming = false;
};

// One request and what it gave.
struct Call {
    std::string method = "GET";
    std::string url;
    std::string body;
    std::string language;
    std::string contentType = "text/plain";
    std::string proxyAddr;
    std::string proxyPort;
    int timeout = 10;
    int flags = 1;
    int handle = -1;
    HttpServiceHeaders requestHeaders;

    int result = -1;
    int status = 14;
    unsigned short httpStatus = 0;
    HttpServiceHeaders headers;

    Call& run(HttpServiceIfc& service, const std::string& downloadFile) {
        status = 14;
        httpStatus = 0;
        result = service.request(proxyAddr, proxyPort, method, url, timeout, body, language, contentType,
                                 flags, handle, status, httpStatus, requestHeaders, headers, downloadFile);
        return *this;
    }
};

class CollectingObserver : public HttpTrafficObserver {
public:
    void transferFinished(const HttpTransferRecord& record) override {
        std::lock_guard<std::mutex> lock(mMutex);
        mRecords.push_back(record);
    }
    std::vector<HttpTransferRecord> records() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mRecords;
    }

private:
    mutable std::mutex mMutex;
    std::vector<HttpTransferRecord> mRecords;
};

class HttpServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        mDir = makeTempDir();
        ASSERT_FALSE(mDir.empty());
        mFile = mDir + "/AGPApp-test";
        mRoutes.install(mServer);
        mRunner = std::make_unique<ServerRunner>(mServer);
        ASSERT_GT(mRunner->port(), 0);
        mRoutes.setBase("http://127.0.0.1:" + std::to_string(mRunner->port()));
    }
    void TearDown() override {
        mRoutes.releaseWaiters();
        mServicePointer.reset(); // closes the kept-alive connections, so the server stops at once
        mRunner.reset();
        removeTree(mDir);
    }

    std::string url(const std::string& path) const { return mRoutes.baseUrl() + path; }
    Call get(const std::string& path, int handle = -1) {
        Call call;
        call.url = url(path);
        call.handle = handle;
        return call.run(mService, mFile);
    }
    Call post(const std::string& path, const std::string& body) {
        Call call;
        call.method = "POST";
        call.url = url(path);
        call.body = body;
        return call.run(mService, mFile);
    }
    std::string downloaded() const { return readFile(mFile); }

    std::string mDir;
    std::string mFile;
    Routes mRoutes;
    httplib::Server mServer;
    std::unique_ptr<ServerRunner> mRunner;
    std::unique_ptr<CurlHttpService> mServicePointer = std::make_unique<CurlHttpService>();
    CurlHttpService& mService = *mServicePointer;
};

// ---- Header collection ----

TEST(HttpServiceHeaders, StoresLowerCaseNamesAndEveryValue) {
    HttpServiceHeaders headers;
    EXPECT_EQ(headers.getNumOfHeaders(), 0);
    headers.addHeader("Cache-Control", "private, max-age=600");
    headers.addHeader("cache-control", "no-store");
    headers.addHeader("Date", "Tue, 17 Nov 2026 10:00:00 GMT");
    EXPECT_EQ(headers.getNumOfHeaders(), 3);
    EXPECT_EQ(headers.getHeader("date", 0), "Tue, 17 Nov 2026 10:00:00 GMT");
    EXPECT_EQ(headers.getHeader("cache-control", 0), "private, max-age=600");
    EXPECT_EQ(headers.getHeader("CACHE-CONTROL", 1), "no-store");
    EXPECT_EQ(headers.getHeader("cache-control", 2), "");
    EXPECT_EQ(headers.getHeader("expires", 0), "");
    EXPECT_EQ(headers.getHeaders("cache-control", 0),
              (std::set<std::string>{"no-store", "private, max-age=600"}));
    EXPECT_TRUE(headers.getHeaders("expires", 0).empty());
    ASSERT_EQ(headers.getAllHeaders().size(), 3u);
    EXPECT_EQ(headers.getAllHeaders()[0].first, "cache-control");
    headers.appendToLastValue(" more");
    EXPECT_EQ(headers.getHeader("date", 0), "Tue, 17 Nov 2026 10:00:00 GMT more");
    headers.clear();
    EXPECT_EQ(headers.getNumOfHeaders(), 0);
}

// ---- Successful transfers ----

TEST_F(HttpServiceTest, GetWritesTheBodyToTheDownloadFileAndReturnsTheHeaders) {
    Call call;
    call.url = url("/doc");
    call.language = "de-DE";
    call.run(mService, mFile);
    ASSERT_EQ(call.result, 1);
    EXPECT_EQ(call.status, 14) << "left as preset on success";
    EXPECT_EQ(call.httpStatus, 200);
    EXPECT_EQ(call.url, url("/doc"));
    EXPECT_GT(call.handle, 0);
    EXPECT_EQ(downloaded(), "hello document");
    struct stat info {};
    ASSERT_EQ(::stat(mFile.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);

    EXPECT_EQ(call.headers.getHeaders("x-multi", 0), (std::set<std::string>{"one", "two"}));
    EXPECT_EQ(call.headers.getHeaders("cache-control", 0), (std::set<std::string>{"private, max-age=600"}));
    EXPECT_EQ(call.headers.getHeader("content-type", 0), "text/plain");
    EXPECT_EQ(call.headers.getHeader("x-seen-language", 0), "de-DE");
    EXPECT_GE(call.headers.getNumOfHeaders(), 5);
    for (const auto& header : call.headers.getAllHeaders()) {
        for (char c : header.first) {
            EXPECT_FALSE(c >= 'A' && c <= 'Z') << header.first;
        }
    }

    // Without a language no Accept-Language is sent; the file is overwritten, not appended to.
    Call again = get("/doc", call.handle);
    ASSERT_EQ(again.result, 1);
    EXPECT_EQ(again.headers.getHeader("x-seen-language", 0), "");
    ASSERT_EQ(get("/short").result, 1);
    EXPECT_EQ(downloaded(), "x");
}

TEST_F(HttpServiceTest, PostSendsTheBodyWithItsContentType) {
    Call call;
    call.method = "POST";
    call.url = url("/method");
    call.body = "trace text\nline 2";
    call.contentType = "text/plain";
    call.run(mService, mFile);
    ASSERT_EQ(call.result, 1);
    EXPECT_EQ(downloaded(), "POST:trace text\nline 2");
    EXPECT_EQ(call.headers.getHeader("x-seen-content-type", 0), "text/plain");

    // A GET sends neither the body nor the content type.
    call.method = "GET";
    call.run(mService, mFile);
    ASSERT_EQ(call.result, 1);
    EXPECT_EQ(downloaded(), "GET:");
    EXPECT_EQ(call.headers.getHeader("x-seen-content-type", 0), "");
}

TEST_F(HttpServiceTest, RequestHeadersAreSent) {
    Call call;
    call.url = url("/method");
    call.requestHeaders.addHeader("Content-Type", "application/test");
    call.run(mService, mFile);
    ASSERT_EQ(call.result, 1);
    EXPECT_EQ(call.headers.getHeader("x-seen-content-type", 0), "application/test");
}

// ---- Redirections ----

TEST_F(HttpServiceTest, RedirectionsAreFollowedAndTheFinalUrlReported) {
    Call call = get("/r/a");
    ASSERT_EQ(call.result, 1);
    EXPECT_EQ(call.httpStatus, 200);
    EXPECT_EQ(call.url, url("/r/d#part"));
    EXPECT_EQ(downloaded(), "final");
    EXPECT_EQ(call.headers.getHeaders("x-hop", 0), (std::set<std::string>{"d"}))
        << "final response's headers only";

    Call spaces = get("/spaces");
    ASSERT_EQ(spaces.result, 1);
    EXPECT_EQ(spaces.url, url("/method?text=a%20b&u=%c3%a4%41")) << "encoded as browsers do";
}

TEST_F(HttpServiceTest, TenRedirectionsAreFollowedAndAnEleventhIsALoop) {
    Call ten = get("/hop/0?stop=10");
    ASSERT_EQ(ten.result, 1);
    EXPECT_EQ(ten.url, url("/hop/10?stop=10"));
    EXPECT_EQ(downloaded(), "hop 10");

    Call eleven = get("/hop/0?stop=11");
    EXPECT_EQ(eleven.result, 0);
    EXPECT_EQ(eleven.status, 12);
    EXPECT_EQ(eleven.url, url("/hop/10?stop=11")) << "the URL last requested";
}

TEST_F(HttpServiceTest, ARedirectionToAUrlAlreadyVisitedIsALoop) {
    Call loop = get("/loop/a");
    EXPECT_EQ(loop.result, 0);
    EXPECT_EQ(loop.status, 12);
    EXPECT_EQ(loop.httpStatus, 302);
    EXPECT_EQ(loop.url, url("/loop/b"));

    Call self = get("/self");
    EXPECT_EQ(self.result, 0);
    EXPECT_EQ(self.status, 12) << "a fragment does not make another URL";
    EXPECT_EQ(self.url, url("/self"));
}

TEST_F(HttpServiceTest, AMissingOrInvalidLocationIsAnInvalidRedirection) {
    for (const char* path : {"/nolocation", "/ftp", "/badlocation"}) {
        Call call = get(path);
        EXPECT_EQ(call.result, 0) << path;
        EXPECT_EQ(call.status, 11) << path;
        EXPECT_EQ(call.httpStatus, 302) << path;
        EXPECT_EQ(call.url, url(path)) << path;
    }
}

TEST_F(HttpServiceTest, RedirectionsAfterAPostFollowTheBrowsersRules) {
    EXPECT_EQ(post("/post303", "data").result, 1);
    EXPECT_EQ(downloaded(), "GET:");
    EXPECT_EQ(post("/post302", "data").result, 1);
    EXPECT_EQ(downloaded(), "GET:");
    EXPECT_EQ(post("/post301", "data").result, 1);
    EXPECT_EQ(downloaded(), "GET:");
    EXPECT_EQ(post("/post307", "data").result, 1);
    EXPECT_EQ(downloaded(), "POST:data");
    Call kept = post("/post308", "data");
    EXPECT_EQ(kept.result, 1);
    EXPECT_EQ(downloaded(), "POST:data");
    EXPECT_EQ(kept.headers.getHeader("x-seen-content-type", 0), "text/plain");
}

TEST_F(HttpServiceTest, WithoutTheFollowFlagARedirectionIsTheResult) {
    Call call;
    call.url = url("/r/a");
    call.flags = 0;
    call.run(mService, mFile);
    EXPECT_EQ(call.result, 1);
    EXPECT_EQ(call.httpStatus, 302);
    EXPECT_EQ(call.headers.getHeader("location", 0), "b");
    EXPECT_EQ(call.url, url("/r/a"));
    EXPECT_EQ(downloaded(), "moved");
}

// ---- Status mapping ----

TEST_F(HttpServiceTest, HttpErrorStatusesAreFailuresWithTheirCode) {
    for (int code : {404, 500}) {
        Call call = get("/status/" + std::to_string(code));
        EXPECT_EQ(call.result, 0);
        EXPECT_EQ(call.status, 10);
        EXPECT_EQ(call.httpStatus, code);
    }
}

TEST_F(HttpServiceTest, NetworkFailuresMapOntoTheConnectionStatuses) {
    Call refused;
    refused.url = "http://127.0.0.1:" + std::to_string(unusedPort()) + "/";
    refused.run(mService, mFile);
    EXPECT_EQ(refused.result, 0);
    EXPECT_EQ(refused.status, 5);

    Call unknownHost;
    unknownHost.url = "http://" + std::string(kUnresolvableHost) + "/";
    unknownHost.run(mService, mFile);
    EXPECT_EQ(unknownHost.result, 0);
    EXPECT_EQ(unknownHost.status, 2);

    Call timeout;
    timeout.url = url("/slow");
    timeout.timeout = 1;
    timeout.run(mService, mFile);
    EXPECT_EQ(timeout.result, 0);
    EXPECT_EQ(timeout.status, 5);
}

TEST_F(HttpServiceTest, MalformedOrUnsupportedUrlsAreUriParserFailures) {
    for (const char* bad : {"http://[::1/x", "not a url", "", "ftp://127.0.0.1/file", "http://a b/"}) {
        Call call;
        call.url = bad;
        call.run(mService, mFile);
        EXPECT_EQ(call.result, 0) << bad;
        EXPECT_EQ(call.status, 1) << bad;
        EXPECT_EQ(call.url, bad);
    }
    Call put;
    put.method = "PUT";
    put.url = url("/doc");
    put.run(mService, mFile);
    EXPECT_EQ(put.result, 0);
    EXPECT_EQ(put.status, 0);
}

// ---- Connection handles ----

TEST_F(HttpServiceTest, AConnectionHandleReusesItsConnection) {
    Call first = get("/port");
    ASSERT_EQ(first.result, 1);
    const std::string firstPort = downloaded();
    const int handle = first.handle;
    ASSERT_GT(handle, 0);

    Call second = get("/port", handle);
    ASSERT_EQ(second.result, 1);
    EXPECT_EQ(second.handle, handle);
    EXPECT_EQ(downloaded(), firstPort) << "same client port: the kept-alive connection";

    Call other = get("/port");
    ASSERT_EQ(other.result, 1);
    EXPECT_NE(other.handle, handle);
    EXPECT_NE(downloaded(), firstPort) << "another handle, another connection";
    EXPECT_EQ(mService.handleCount(), 2);
}

TEST_F(HttpServiceTest, ReleaseDropsTheHandlesAndDeletesTheDownloadFile) {
    Call call = get("/doc");
    ASSERT_EQ(call.result, 1);
    ASSERT_TRUE(fileExists(mFile));
    mService.release(mFile);
    EXPECT_FALSE(fileExists(mFile));
    EXPECT_EQ(mService.handleCount(), 0);

    // The released id is not known any more: the next request gets a new one.
    const int old = call.handle;
    call.run(mService, mFile);
    EXPECT_EQ(call.result, 1);
    EXPECT_NE(call.handle, old);

    // A file the service never wrote is left alone.
    const std::string foreign = mDir + "/foreign";
    std::ofstream(foreign) << "keep";
    mService.release(foreign);
    EXPECT_TRUE(fileExists(foreign));
}

TEST_F(HttpServiceTest, ClientsMayCallConcurrentlyWithTheirOwnHandles) {
    std::vector<std::thread> clients;
    std::atomic<int> successes{0};
    for (int client = 0; client < 4; ++client) {
        clients.emplace_back([this, client, &successes] {
            const std::string file = mDir + "/AGPApp-client" + std::to_string(client);
            int handle = -1;
            for (int i = 0; i < 5; ++i) {
                Call call;
                call.url = url(i % 2 == 0 ? "/doc" : "/r/a");
                call.handle = handle;
                call.run(mService, file);
                handle = call.handle;
                if (call.result == 1 && readFile(file) == (i % 2 == 0 ? "hello document" : "final")) {
                    ++successes;
                }
            }
        });
    }
    for (std::thread& client : clients) {
        client.join();
    }
    EXPECT_EQ(successes.load(), 20);
    EXPECT_EQ(mService.handleCount(), 4);
}

// ---- Shutdown ----

TEST_F(HttpServiceTest, AbortAllEndsATransferUnderWayAndLaterRequests) {
    Call call;
    call.url = url("/stream");
    call.timeout = 60;
    std::thread client([&] { call.run(mService, mFile); });
    mRoutes.waitUntilStreaming();
    mService.abortAll();
    client.join(); // would hang for the server's 30 seconds if the abort did not work
    EXPECT_EQ(call.result, 0);
    EXPECT_EQ(call.status, 5);

    Call later = get("/doc");
    EXPECT_EQ(later.result, 0);
    EXPECT_EQ(later.status, 5);
}

// ---- Observer and logging ----

TEST_F(HttpServiceTest, TheTrafficObserverSeesEveryTransfer) {
    auto observer = std::make_shared<CollectingObserver>();
    mService.setTrafficObserver(observer);
    ASSERT_EQ(get("/r/a").result, 1);
    ASSERT_EQ(get("/status/404").result, 0);
    ASSERT_EQ(get("/big").result, 1);
    ASSERT_EQ(post("/method", "sent").result, 1);
    mService.setTrafficObserver(nullptr);
    ASSERT_EQ(get("/doc").result, 1);

    const std::vector<HttpTransferRecord> records = observer->records();
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[0].method, "GET");
    EXPECT_EQ(records[0].requestedUrl, url("/r/a"));
    EXPECT_EQ(records[0].finalUrl, url("/r/d#part"));
    EXPECT_EQ(records[0].redirections,
              (std::vector<std::string>{url("/r/b"), url("/r/c"), url("/r/d#part")}));
    EXPECT_TRUE(records[0].success);
    EXPECT_EQ(records[0].connectionStatus, -1);
    EXPECT_EQ(records[0].httpStatus, 200);
    EXPECT_EQ(records[0].body, "final");
    EXPECT_EQ(records[0].bodySize, 5u);
    EXPECT_EQ(records[0].responseHeaders.getHeader("x-hop", 0), "d");
    EXPECT_GE(records[0].durationMs, 0);

    EXPECT_FALSE(records[1].success);
    EXPECT_EQ(records[1].connectionStatus, 10);
    EXPECT_EQ(records[1].httpStatus, 404);
    EXPECT_EQ(records[1].body, "error page");

    EXPECT_EQ(records[2].bodySize, CurlHttpService::kObservedBodyLimit + 1000);
    EXPECT_EQ(records[2].body.size(), CurlHttpService::kObservedBodyLimit);
    EXPECT_TRUE(records[2].bodyTruncated);

    EXPECT_EQ(records[3].method, "POST");
    EXPECT_EQ(records[3].requestBody, "sent");
    EXPECT_EQ(records[3].body, "POST:sent");
}

TEST_F(HttpServiceTest, TransfersAreLogged) {
    LogCapture capture(6);
    ASSERT_EQ(get("/r/a").result, 1);
    ASSERT_EQ(get("/status/500").result, 0);
    int transfers = 0;
    int hops = 0;
    int failures = 0;
    for (const LogEntry& entry : capture.entries()) {
        if (entry.module != "HttpService") {
            continue;
        }
        if (entry.level == 5 && entry.text.rfind("GET [" + url("/r/d#part") + "]", 0) == 0) {
            ++transfers;
            EXPECT_NE(entry.text.find("HTTP 200"), std::string::npos) << entry.text;
        } else if (entry.level == 6 && entry.text.rfind("Redirection ", 0) == 0) {
            ++hops;
        } else if (entry.level == 2 && entry.text.rfind("GET [" + url("/status/500") + "] failed", 0) == 0) {
            ++failures;
            EXPECT_NE(entry.text.find("connection status 10, HTTP 500"), std::string::npos) << entry.text;
        }
    }
    EXPECT_EQ(transfers, 1);
    EXPECT_EQ(hops, 3);
    EXPECT_EQ(failures, 1);
}

// ---- Proxy ----

TEST_F(HttpServiceTest, AProxyIsUsedOnlyWhenAddressAndPortAreGiven) {
    TinyProxy proxy;
    Call through;
    through.url = "http://agp-test.invalid/doc";
    through.proxyAddr = "127.0.0.1";
    through.proxyPort = std::to_string(proxy.port());
    through.run(mService, mFile);
    ASSERT_EQ(through.result, 1) << "the host name is resolved by the proxy, not by us";
    EXPECT_EQ(downloaded(), "via proxy");
    ASSERT_EQ(proxy.requestLines().size(), 1u);
    EXPECT_EQ(proxy.requestLines()[0], "GET http://agp-test.invalid/doc HTTP/1.1");

    Call direct;
    direct.url = url("/doc");
    direct.proxyAddr = "127.0.0.1";
    direct.run(mService, mFile);
    EXPECT_EQ(direct.result, 1);
    EXPECT_EQ(downloaded(), "hello document");
    EXPECT_EQ(proxy.requestLines().size(), 1u);
}

TEST_F(HttpServiceTest, AProxyThatRefusesTheTunnelOrDoesNotAnswerIsAProxyFailure) {
    TinyProxy proxy;
    Call refused;
    refused.url = "https://agp-test.invalid/";
    refused.proxyAddr = "127.0.0.1";
    refused.proxyPort = std::to_string(proxy.port());
    refused.run(mService, mFile);
    EXPECT_EQ(refused.result, 0);
    EXPECT_EQ(refused.status, 6);
    ASSERT_EQ(proxy.requestLines().size(), 1u);
    EXPECT_EQ(proxy.requestLines()[0].rfind("CONNECT agp-test.invalid:443 ", 0), 0u);

    Call absent;
    absent.url = url("/doc");
    absent.proxyAddr = "127.0.0.1";
    absent.proxyPort = std::to_string(unusedPort());
    absent.run(mService, mFile);
    EXPECT_EQ(absent.result, 0);
    EXPECT_EQ(absent.status, 6);
}

// ---- TLS ----

class HttpsServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        mDir = makeTempDir();
        ASSERT_FALSE(mDir.empty());
        mFile = mDir + "/AGPApp-tls";
        mCert = mDir + "/cert.pem";
        ASSERT_TRUE(makeCertificate(mCert, mDir + "/key.pem"));
        mServer = std::make_unique<httplib::SSLServer>(mCert.c_str(), (mDir + "/key.pem").c_str());
        ASSERT_TRUE(mServer->is_valid());
        mServer->Get("/doc", [](const httplib::Request&, httplib::Response& res) {
            res.set_content("secure document", "text/plain");
        });
        mRunner = std::make_unique<ServerRunner>(*mServer);
        mUrl = "https://127.0.0.1:" + std::to_string(mRunner->port()) + "/doc";
    }
    void TearDown() override {
        mRunner.reset();
        mServer.reset();
        removeTree(mDir);
    }

    std::string mDir;
    std::string mFile;
    std::string mCert;
    std::string mUrl;
    std::unique_ptr<httplib::SSLServer> mServer;
    std::unique_ptr<ServerRunner> mRunner;
};

TEST_F(HttpsServiceTest, AnUntrustedCertificateIsACertificateFailure) {
    CurlHttpService service;
    Call call;
    call.url = mUrl;
    call.run(service, mFile);
    EXPECT_EQ(call.result, 0);
    EXPECT_EQ(call.status, 3);
}

TEST_F(HttpsServiceTest, TheExtraCaFileIsTrusted) {
    CurlHttpService service(mCert);
    Call call;
    call.url = mUrl;
    call.run(service, mFile);
    ASSERT_EQ(call.result, 1);
    EXPECT_EQ(readFile(mFile), "secure document");

    CurlHttpService later;
    later.setExtraCaFile(mCert);
    Call again;
    again.url = mUrl;
    again.run(later, mFile);
    EXPECT_EQ(again.result, 1);

    // An unreadable extra CA file leaves the system's store alone: still untrusted.
    CurlHttpService missing(mDir + "/missing.pem");
    Call untrusted;
    untrusted.url = mUrl;
    untrusted.run(missing, mFile);
    EXPECT_EQ(untrusted.status, 3);
}

TEST_F(HttpServiceTest, TlsToAPlainHttpServerIsAHandshakeFailure) {
    Call call;
    call.url = "https://127.0.0.1:" + std::to_string(mRunner->port()) + "/doc";
    call.run(mService, mFile);
    EXPECT_EQ(call.result, 0);
    EXPECT_EQ(call.status, 4);
}

} // namespace
