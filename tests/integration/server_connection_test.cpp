// The configuration record, the server connection and remote trace against loopback servers.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <ctime>
#include <fstream>
#include <memory>
#include <mutex>

#include "AGPDataObserver.h"
#include "AGPPhoneletManager.h"
#include "AGPRemoteTraceHandler.h"
#include "AGPServerConnection.h"
#include "LoopbackServers.h"
#include "clock/ClockService.h"
#include "config/ConfigurationStore.h"
#include "config/ManageableData.h"
#include "events/EventLoop.h"
#include "http/CurlHttpService.h"
#include "http/HttpServiceHeaders.h"
#include "logging/LogCapture.h"

namespace {

const size_t kBigBody = 50u * 1024 * 1024;
const size_t kLimit = 64 * 1024;

// `size` bytes of 'x', gzip-compressed.
std::string gzipOf(size_t size) {
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    const std::string input(1024 * 1024, 'x');
    std::string output;
    char buffer[65536];
    size_t left = size;
    do {
        const size_t part = std::min(left, input.size());
        left -= part;
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
        stream.avail_in = static_cast<uInt>(part);
        do {
            stream.next_out = reinterpret_cast<Bytef*>(buffer);
            stream.avail_out = sizeof buffer;
            deflate(&stream, left == 0 ? Z_FINISH : Z_NO_FLUSH);
            output.append(buffer, sizeof buffer - stream.avail_out);
        } while (stream.avail_out == 0);
    } while (left > 0);
    deflateEnd(&stream);
    return output;
}

char bigBodyByte(size_t offset) {
    return static_cast<char>(offset % 251);
}

// The faults a real HTTP server does not commit, chosen by the request path.
RawServer::Reply misbehave(const std::string& request) {
    RawServer::Reply reply;
    if (request.find(" /cut ") != std::string::npos) {
        reply.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nonly the start";
    } else if (request.find(" /gzip ") != std::string::npos) {
        reply.bytes = "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 12\r\n\r\nnot gzipped!";
    } else if (request.find(" /silent ") != std::string::npos) {
        reply.hold = true;
    } else {
        // Ends its side first, so that the client stops reading and only a send can fail.
        reply.drain = 1024 * 1024;
        reply.reset = true;
    }
    return reply;
}

class ServerConnection : public ::testing::Test {
protected:
    void SetUp() override {
        mServer.Get("/doc", [](const httplib::Request&, httplib::Response& response) {
            response.set_content("<Text>hello</Text>", "text/xml");
        });
        mServer.Get("/big", [](const httplib::Request&, httplib::Response& response) {
            response.set_content_provider(kBigBody, "application/octet-stream",
                                          [](size_t offset, size_t length, httplib::DataSink& sink) {
                                              std::string chunk(std::min<size_t>(length, 65536), '\0');
                                              for (size_t i = 0; i < chunk.size(); ++i) {
                                                  chunk[i] = bigBodyByte(offset + i);
                                              }
                                              return sink.write(chunk.data(), chunk.size());
                                          });
        });
        // N bytes of 'x': with a Content-Length, in chunks without one, or gzip-compressed.
        mServer.Get(R"(/plain/(\d+))", [](const httplib::Request& request, httplib::Response& response) {
            response.set_content(std::string(std::stoul(request.matches[1]), 'x'),
                                 "application/octet-stream");
        });
        mServer.Get(R"(/chunked/(\d+))", [](const httplib::Request& request, httplib::Response& response) {
            auto body = std::make_shared<std::string>(std::stoul(request.matches[1]), 'x');
            response.set_chunked_content_provider(
                "application/octet-stream", [body](size_t offset, httplib::DataSink& sink) {
                    if (offset >= body->size()) {
                        sink.done();
                        return true;
                    }
                    const size_t part = std::min<size_t>(body->size() - offset, 4096);
                    return sink.write(body->data() + offset, part);
                });
        });
        mServer.Get(R"(/gzip/(\d+))", [](const httplib::Request& request, httplib::Response& response) {
            response.set_header("Content-Encoding", "gzip");
            response.set_content(gzipOf(std::stoul(request.matches[1])), "application/octet-stream");
        });
        mServer.Get(R"(/status/(\d+))", [](const httplib::Request& request, httplib::Response& response) {
            response.status = std::stoi(request.matches[1]);
        });
        redirect("/loop/a", "/loop/b");
        redirect("/loop/b", "/loop/a");
        redirect("/ftp", "ftp://127.0.0.1/file");
        redirect("/badlocation", "http://[::1/x");
        mServer.Post("/trace", [this](const httplib::Request& request, httplib::Response&) {
            std::lock_guard<std::mutex> lock(mMutex);
            mTraces.push_back(request.body);
        });
        mRunner = std::make_unique<ServerRunner>(mServer);

        // Tests run in parallel processes, and each download file is named after the application.
        mStore.setValues({{"app-name-7", mAppName},
                          {"app-name-3", mAppName},
                          {"app-name-2", "News"},
                          {"server-addr-3", "127.0.0.1"},
                          {"server-port-3", std::to_string(mRunner->port())},
                          {"transport-3", "http"},
                          {"program-name-3", "doc"},
                          {"ipaddress", "192.0.2.55"},
                          {"ip-protocol-mode", "IPv4"},
                          {"language", "de"},
                          {"related-device-type", "Brisa Set 55"}});
        configuration()->startAGPDataObserver(&mStore);
    }
    void TearDown() override {
        AGPPhoneletManager::shutdownPhonelet();
        mRunner.reset();
    }

    void redirect(const std::string& path, const std::string& location) {
        mServer.Get(path, [location](const httplib::Request&, httplib::Response& response) {
            response.status = 302;
            response.set_header("Location", location);
        });
    }
    AGPDataObserver* configuration() { return AGPPhoneletManager::getAGPDataObserver(); }
    // Started once; later calls read the configuration again, as a change notification would.
    AGPServerConnection* connection() {
        AGPServerConnection* connection = AGPPhoneletManager::getAGPServerConnection();
        if (!mStarted) {
            EXPECT_TRUE(configuration()->updateXMLApplicationConfiguration(mAppName));
            EXPECT_TRUE(connection->startAGPServerConnection(&mHttp));
            mStarted = true;
        }
        configuration()->getXMLApplicationData("3");
        return connection;
    }
    std::string url(const std::string& path) { return mRunner->base() + path; }

    // The error text of a request that must fail.
    std::string failure(const std::string& url, const std::string& postBody = "") {
        char* data = new char[1];
        unsigned int size = 1;
        HttpServiceHeaders headers;
        std::string error;
        AGPServerConnection* server = connection();
        const int result = postBody.empty() ? server->getHttpData(url, AGPServerConnection::XML_DOCUMENT,
                                                                  data, size, headers, error)
                                            : server->postHttpData(url, AGPServerConnection::XML_DOCUMENT,
                                                                   postBody, data, size, headers, error);
        EXPECT_EQ(result, 0) << url;
        EXPECT_EQ(data, nullptr) << url;
        EXPECT_EQ(size, 0u) << url;
        delete[] data;
        return error;
    }

    const std::string mAppName = "Weather-" + std::to_string(::getpid());
    EventLoop mLoop;
    ConfigurationStore mStore{mLoop};
    CurlHttpService mHttp;
    httplib::Server mServer;
    std::unique_ptr<ServerRunner> mRunner;
    bool mStarted = false;
    std::mutex mMutex;
    std::vector<std::string> mTraces;
};

} // namespace

TEST_F(ServerConnection, FindsTheApplicationAndDerivesItsSettings) {
    LogCapture log(5);
    EXPECT_FALSE(configuration()->updateXMLApplicationConfiguration("w" + mAppName.substr(1)))
        << "names are case-sensitive";
    EXPECT_TRUE(log.contains("AGPDataObserver", 5,
                             "Couldn't find index of XML Application [w" + mAppName.substr(1) + "]"));
    ASSERT_TRUE(configuration()->updateXMLApplicationConfiguration(mAppName));
    EXPECT_EQ(configuration()->getIndex(), "3") << "the first entry in answer order wins";
    EXPECT_EQ(configuration()->getServerAddress(), "127.0.0.1");
    EXPECT_EQ(configuration()->getDeviceType(), "brs55");
    EXPECT_EQ(configuration()->getLocalIPAddress(), "192.0.2.55");

    ManageableData change;
    change.setValue("ip-protocol-mode", "IPv4_IPv6");
    change.setValue("ipaddress", "");
    change.setValue("ipv6-ipaddress-global", "2001:db8::5");
    change.setValue("server-addr-1", "10.0.0.1");
    configuration()->processChangedManageableData(change);
    EXPECT_EQ(configuration()->getLocalIPAddress(), "2001:db8::5");
    EXPECT_TRUE(log.contains("AGPDataObserver", 5,
                             "processChangedManageableData: Unsupported rootId = server-addr-1"));
}

TEST_F(ServerConnection, DocumentsAreBoundedAsTheyArriveAndAfterDecompression) {
    AGPServerConnection* server = connection();
    EXPECT_EQ(server->getDownloadFile(), "/tmp/AGPApp-" + mAppName + "-" + std::to_string(::getpid()));
    EXPECT_EQ(AGPServerConnection::downloadFileFor("a/b c"),
              "/tmp/AGPApp-a%2Fb%20c-" + std::to_string(::getpid()));
    EXPECT_EQ(AGPServerConnection::downloadFileFor(std::string(300, 'x')).size(),
              std::string("/tmp/AGPApp-").size() + 200 + 1 + std::to_string(::getpid()).size())
        << "a long name is cut to fit a file name";
    char* data = nullptr;
    unsigned int size = 0;
    HttpServiceHeaders headers;
    std::string error = "stale";
    ASSERT_EQ(server->getHttpData(url("/doc"), AGPServerConnection::XML_DOCUMENT, data, size, headers, error),
              1);
    EXPECT_EQ(std::string(data, size), "<Text>hello</Text>");
    EXPECT_EQ(error, "");

    // Exactly the limit passes; one byte more fails, whether the length is announced, streamed in
    // chunks, or only known once a small compressed body has been inflated.
    mHttp.setMaxDocumentSize(kLimit);
    const std::string tooLarge = "Document larger than the limit of " + std::to_string(kLimit) + " bytes";
    for (const std::string kind : {"plain", "chunked", "gzip"}) {
        const std::string fits = url("/" + kind + "/" + std::to_string(kLimit));
        ASSERT_EQ(server->getHttpData(fits, AGPServerConnection::XML_DOCUMENT, data, size, headers, error), 1)
            << kind << ": " << error;
        EXPECT_EQ(size, kLimit) << kind;
        EXPECT_EQ(std::string(data, size), std::string(kLimit, 'x')) << kind;
        const std::string over = url("/" + kind + "/" + std::to_string(kLimit + 1));
        EXPECT_EQ(failure(over), tooLarge + "\nRequested URI: " + over);
    }
    // A gzip body of some 60 KB that inflates to 64 MiB stops at the default limit, and the download
    // file never grows beyond it.
    mHttp.setMaxDocumentSize(HttpServiceIfc::kDefaultMaxDocumentSize);
    const std::string bomb = url("/gzip/67108864");
    EXPECT_EQ(failure(bomb), "Document larger than the limit of 4194304 bytes\nRequested URI: " + bomb);
    struct stat info {};
    ASSERT_EQ(::stat(server->getDownloadFile().c_str(), &info), 0);
    EXPECT_LE(static_cast<std::uint64_t>(info.st_size), HttpServiceIfc::kDefaultMaxDocumentSize);

    // A limit raised by the platform lets large bodies through whole.
    mHttp.setMaxDocumentSize(2 * kBigBody);
    ASSERT_EQ(server->getHttpData(url("/big"), AGPServerConnection::IMAGE, data, size, headers, error), 1);
    ASSERT_EQ(size, kBigBody);
    for (size_t offset : {size_t{0}, size_t{65535}, size_t{65536}, kBigBody / 2 + 7, kBigBody - 1}) {
        EXPECT_EQ(data[offset], bigBodyByte(offset)) << offset;
    }
    delete[] data;
}

TEST_F(ServerConnection, HttpStatusesAndRedirectionsBecomeErrorTexts) {
    EXPECT_EQ(failure(url("/status/404")), "HTTP status code: 404\nRequested URI: " + url("/status/404"));
    EXPECT_EQ(failure(url("/status/500")), "HTTP status code: 500\nRequested URI: " + url("/status/500"));
    EXPECT_EQ(failure(url("/ftp")), "Invalid redirection detected\nRequested URI: " + url("/ftp"));
    EXPECT_EQ(failure(url("/badlocation")),
              "Invalid redirection detected\nRequested URI: " + url("/badlocation"));
    EXPECT_EQ(failure(url("/loop/a")), "Redirection loop detected\nRequested URI: " + url("/loop/b") +
                                           "\nOriginal URI: " + url("/loop/a"));

    // A URL that a long text field has grown is sent up to the longest URL, and not at all beyond.
    const std::string longest =
        url("/doc?") + std::string(AGPServerConnection::kMaxUrlLength - url("/doc?").size(), 'q');
    char* data = nullptr;
    unsigned int size = 0;
    HttpServiceHeaders headers;
    std::string error;
    EXPECT_EQ(
        connection()->getHttpData(longest, AGPServerConnection::XML_DOCUMENT, data, size, headers, error), 1);
    delete[] data;
    const std::string tooLong = longest + "q";
    EXPECT_EQ(failure(tooLong), "URI parser failed\nRequested URI: " + tooLong.substr(0, 1024) + "...");

    const std::string longUrl = url("/" + std::string(1500, 'a'));
    const std::string text = failure(longUrl);
    EXPECT_EQ(text, "HTTP status code: 404\nRequested URI: " + longUrl.substr(0, 1024) + "...");
}

TEST_F(ServerConnection, NetworkFaultsBecomeErrorTexts) {
    const std::string refused = "http://127.0.0.1:" + std::to_string(unusedPort()) + "/";
    EXPECT_EQ(failure(refused), "Network connection error\nRequested URI: " + refused);
    const std::string unknownHost = "http://" + std::string(kUnresolvableHost) + "/";
    EXPECT_EQ(failure(unknownHost),
              "Hostname to IP address conversion failed\nRequested URI: " + unknownHost);
    EXPECT_EQ(failure("http://[::1/x"), "URI parser failed\nRequested URI: http://[::1/x");

    RawServer faulty(misbehave);
    EXPECT_EQ(failure(faulty.base() + "/cut"),
              "HTTP response failed\nRequested URI: " + faulty.base() + "/cut");
    EXPECT_EQ(failure(faulty.base() + "/gzip"),
              "Invalid HTTP response content\nRequested URI: " + faulty.base() + "/gzip");
    mHttp.setTimeoutCap(1); // instead of the minute a document may take
    EXPECT_EQ(failure(faulty.base() + "/silent"),
              "Network connection error\nRequested URI: " + faulty.base() + "/silent");
    mHttp.setTimeoutCap(0);
    // A server that drops the connection while a large body is still being sent. (libcurl reads
    // before it writes, so a reset alone would be seen as a failed response.)
    EXPECT_EQ(failure(faulty.base() + "/reset", std::string(8 * 1024 * 1024, 'p')),
              "HTTP request failed\nRequested URI: " + faulty.base() + "/reset");

    // A link planted at the download file's path is not followed: a local fault, the target untouched.
    const std::string dir = makeTempDir();
    std::ofstream(dir + "/target") << "keep";
    const std::string path = AGPServerConnection::downloadFileFor(mAppName);
    std::remove(path.c_str());
    ASSERT_EQ(::symlink((dir + "/target").c_str(), path.c_str()), 0);
    EXPECT_EQ(failure(url("/doc")), "Unknown network error occurred\nRequested URI: " + url("/doc"));
    EXPECT_EQ(readFile(dir + "/target"), "keep");
    std::remove(path.c_str());
    removeTree(dir);
}

TEST_F(ServerConnection, TlsFailuresBecomeErrorTexts) {
    const std::string dir = makeTempDir();
    ASSERT_TRUE(makeCertificate(dir + "/cert.pem", dir + "/key.pem"));
    httplib::SSLServer tls((dir + "/cert.pem").c_str(), (dir + "/key.pem").c_str());
    ASSERT_TRUE(tls.is_valid());
    tls.Get("/doc", [](const httplib::Request&, httplib::Response& response) {
        response.set_content("secret", "text/plain");
    });
    {
        ServerRunner runner(tls);
        const std::string selfSigned = "https://127.0.0.1:" + std::to_string(runner.port()) + "/doc";
        EXPECT_EQ(failure(selfSigned), "Valid certificate not found\nRequested URI: " + selfSigned);
    }
    const std::string plain = "https://127.0.0.1:" + std::to_string(mRunner->port()) + "/doc";
    EXPECT_EQ(failure(plain), "Could not establish secure connection\nRequested URI: " + plain);
    removeTree(dir);
}

TEST_F(ServerConnection, TheProxyComesFromTheConfiguration) {
    TinyProxy proxy;
    const std::string port = std::to_string(proxy.port());
    mStore.setValues(
        {{"proxy-enabled-3", "Yes"}, {"http-proxy-addr", "127.0.0.1"}, {"http-proxy-port", port}});
    EXPECT_EQ(failure("https://agp-test.invalid/"), "Could not establish secure tunnel: 127.0.0.1:" + port +
                                                        "\nRequested URI: https://agp-test.invalid/");
    ASSERT_EQ(proxy.requestLines().size(), 1u);

    mStore.setValue("proxy-enabled-3", "yes");
    char* data = nullptr;
    unsigned int size = 0;
    HttpServiceHeaders headers;
    std::string error;
    EXPECT_EQ(
        connection()->getHttpData(url("/doc"), AGPServerConnection::XML_DOCUMENT, data, size, headers, error),
        1)
        << error;
    EXPECT_EQ(std::string(data, size), "<Text>hello</Text>");
    EXPECT_EQ(proxy.requestLines().size(), 1u) << "\"yes\" is not \"Yes\": no proxy";
    delete[] data;
}

TEST_F(ServerConnection, RemoteTraceOnlyWhenEnabled) {
    mStore.setValues({{"remote-debug-3", "enabled"}, {"debug-prog-name-3", "trace"}});
    connection();
    ClockService clock;
    AGPRemoteTraceHandler* trace = AGPPhoneletManager::getAGPRemoteTraceHandler();
    ASSERT_TRUE(trace->startRemoteTraceHandler(&clock));
    trace->remoteTrace(url("/trace"), "abc");
    {
        std::lock_guard<std::mutex> lock(mMutex);
        EXPECT_TRUE(mTraces.empty()) << "\"enabled\" in lower case is not \"Enabled\"";
    }
    mStore.setValue("remote-debug-3", "Enabled");
    connection();
    trace->remoteTrace(url("/trace"), "abc");
    trace->remoteTrace(url("/nowhere"), "lost"); // a failed upload is not reported further
    std::lock_guard<std::mutex> lock(mMutex);
    ASSERT_EQ(mTraces.size(), 1u);
    EXPECT_EQ(mTraces[0].size(), std::string("[10:15:02]\nabc").size());
    EXPECT_EQ(mTraces[0].front(), '[');
    EXPECT_EQ(mTraces[0].substr(9), "]\nabc");
}

TEST(CacheValidity, FromResponseHeaders) {
    auto validity = [](std::vector<std::pair<std::string, std::string>> lines) {
        HttpServiceHeaders headers;
        for (const auto& line : lines) {
            headers.addHeader(line.first, line.second);
        }
        return AGPServerConnection::getCacheValidityFromHeaders(headers);
    };
    const long now = static_cast<long>(time(nullptr));
    EXPECT_EQ(validity({}), AGPServerConnection::CACHE_TIMEVALID_FOREVER);
    EXPECT_EQ(validity({{"Server", "x"}}), AGPServerConnection::CACHE_TIMEVALID_FOREVER);
    EXPECT_EQ(validity({{"Cache-Control", "no-cache"}}), AGPServerConnection::CACHE_TIMEVALID_NEVER);
    EXPECT_EQ(validity({{"Cache-Control", "max-age=0"}}), AGPServerConnection::CACHE_TIMEVALID_NEVER);
    EXPECT_NEAR(validity({{"Cache-Control", "max-age=600"}}), now + 600, 2);
    EXPECT_NEAR(validity({{"Cache-Control", "max-age=600"}, {"Cache-Control", "max-age=60"}}), now + 60, 2);
    EXPECT_EQ(validity({{"Cache-Control", "private, max-age=600"}}),
              AGPServerConnection::CACHE_TIMEVALID_FOREVER);
    EXPECT_NEAR(
        validity({{"Date", "Tue, 17 Nov 2026 10:00:00 GMT"}, {"Expires", "Tue, 17 Nov 2026 10:05:00 GMT"}}),
        now + 300, 2)
        << "the server's freshness applies to the phone's clock";
    EXPECT_EQ(
        validity({{"Date", "Tue, 17 Nov 2026 10:00:00 GMT"}, {"Expires", "Tue, 17 Nov 2026 10:00:00 GMT"}}),
        AGPServerConnection::CACHE_TIMEVALID_NEVER);
    EXPECT_EQ(validity({{"Expires", "0"}}), AGPServerConnection::CACHE_TIMEVALID_NEVER);
}
