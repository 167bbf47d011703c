// The configuration record, the server connection and remote trace against a loopback server.
#include <gtest/gtest.h>
#include <httplib.h>

#include <ctime>
#include <thread>

#include "AGPDataObserver.h"
#include "AGPPhoneletManager.h"
#include "AGPRemoteTraceHandler.h"
#include "AGPServerConnection.h"
#include "clock/ClockService.h"
#include "config/ConfigurationStore.h"
#include "config/ManageableData.h"
#include "events/EventLoop.h"
#include "http/CurlHttpService.h"
#include "http/HttpServiceHeaders.h"
#include "logging/LogCapture.h"

namespace {

class ServerConnection : public ::testing::Test {
protected:
    void SetUp() override {
        mServer.Get("/doc", [](const httplib::Request&, httplib::Response& response) {
            response.set_content("<Text>hello</Text>", "text/xml");
        });
        mServer.Get("/loop", [](const httplib::Request&, httplib::Response& response) {
            response.status = 302;
            response.set_header("Location", "/loop");
        });
        mServer.Post("/trace", [this](const httplib::Request& request, httplib::Response&) {
            std::lock_guard<std::mutex> lock(mMutex);
            mTraces.push_back(request.body);
        });
        mPort = mServer.bind_to_any_port("127.0.0.1");
        mThread = std::thread([this] { mServer.listen_after_bind(); });
        while (!mServer.is_running()) {
            std::this_thread::yield();
        }

        mStore.setValues({{"app-name-7", mAppName},
                          {"app-name-3", mAppName},
                          {"app-name-2", "News"},
                          {"server-addr-3", "127.0.0.1"},
                          {"server-port-3", std::to_string(mPort)},
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
        mServer.stop();
        mThread.join();
    }

    AGPDataObserver* configuration() { return AGPPhoneletManager::getAGPDataObserver(); }
    std::string url(const std::string& path) { return "http://127.0.0.1:" + std::to_string(mPort) + path; }

    // The download file is named after the application: tests running at the same time differ.
    const std::string mAppName =
        std::string("Weather-") + ::testing::UnitTest::GetInstance()->current_test_info()->name();
    EventLoop mLoop;
    ConfigurationStore mStore{mLoop};
    CurlHttpService mHttp;
    httplib::Server mServer;
    int mPort = 0;
    std::thread mThread;
    std::mutex mMutex;
    std::vector<std::string> mTraces;
};

} // namespace

TEST_F(ServerConnection, FindsTheApplicationAndDerivesItsSettings) {
    LogCapture log(5);
    std::string lowerCase = mAppName;
    lowerCase[0] = 'w';
    EXPECT_FALSE(configuration()->updateXMLApplicationConfiguration(lowerCase)) << "names are case-sensitive";
    EXPECT_TRUE(
        log.contains("AGPDataObserver", 5, "Couldn't find index of XML Application [" + lowerCase + "]"));
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

TEST_F(ServerConnection, FetchesDocumentsAndExplainsFailures) {
    ASSERT_TRUE(configuration()->updateXMLApplicationConfiguration(mAppName));
    AGPServerConnection* connection = AGPPhoneletManager::getAGPServerConnection();
    ASSERT_TRUE(connection->startAGPServerConnection(&mHttp));
    EXPECT_EQ(connection->getDownloadFile(), "/tmp/AGPApp-" + mAppName);

    char* data = nullptr;
    unsigned int size = 0;
    HttpServiceHeaders headers;
    std::string error = "stale";
    ASSERT_EQ(
        connection->getHttpData(url("/doc"), AGPServerConnection::XML_DOCUMENT, data, size, headers, error),
        1);
    EXPECT_EQ(std::string(data, size), "<Text>hello</Text>");
    EXPECT_EQ(error, "");

    EXPECT_EQ(
        connection->getHttpData(url("/loop"), AGPServerConnection::XML_DOCUMENT, data, size, headers, error),
        0);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(error, "Redirection loop detected\nRequested URI: " + url("/loop")) << error;

    EXPECT_EQ(connection->getHttpData(url("/missing"), AGPServerConnection::XML_DOCUMENT, data, size, headers,
                                      error),
              0);
    EXPECT_EQ(error, "HTTP status code: 404\nRequested URI: " + url("/missing"));

    const std::string longUrl = url("/" + std::string(1500, 'a'));
    connection->getHttpData(longUrl, AGPServerConnection::XML_DOCUMENT, data, size, headers, error);
    EXPECT_EQ(error, "HTTP status code: 404\nRequested URI: " + longUrl.substr(0, 1024) + "...");
    delete[] data;
}

TEST_F(ServerConnection, RemoteTraceOnlyWhenEnabled) {
    mStore.setValues({{"remote-debug-3", "enabled"}, {"debug-prog-name-3", "trace"}});
    ASSERT_TRUE(configuration()->updateXMLApplicationConfiguration(mAppName));
    AGPPhoneletManager::getAGPServerConnection()->startAGPServerConnection(&mHttp);
    ClockService clock;
    AGPRemoteTraceHandler* trace = AGPPhoneletManager::getAGPRemoteTraceHandler();
    ASSERT_TRUE(trace->startRemoteTraceHandler(&clock));
    trace->remoteTrace(url("/trace"), "abc");
    {
        std::lock_guard<std::mutex> lock(mMutex);
        EXPECT_TRUE(mTraces.empty()) << "\"enabled\" in lower case is not \"Enabled\"";
    }
    mStore.setValue("remote-debug-3", "Enabled");
    configuration()->getXMLApplicationData("3");
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
