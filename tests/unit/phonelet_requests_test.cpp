// The phonelet's own requests: application URLs, start-up and push routing, the error document.
#include <gtest/gtest.h>

#include "AGPDataObserver.h"
#include "AGPGUIHandler.h"
#include "AGPMessageQueueHandler.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "AGPServerConnection.h"
#include "AGPXMLParser.h"
#include "config/ConfigurationStore.h"
#include "events/EventLoop.h"
#include "logging/LogCapture.h"

namespace {

// A phonelet without host: its configuration comes from a store, and the messages it queues are
// read back from the queue handler's log lines. The queues are stopped at once, so that nothing
// is processed: what is queued stays as it was queued.
class PhoneletRequests : public ::testing::Test {
protected:
    void SetUp() override {
        mStore.setValues({{"app-name-1", "Weather"},
                          {"server-addr-1", "192.0.2.10"},
                          {"server-port-1", "443"},
                          {"transport-1", "https"},
                          {"program-name-1", "app/start"},
                          {"num-tabs-1", "0"},
                          {"tab1-app-name-1", "news"},
                          {"tab2-app-name-1", "sport"},
                          {"tab3-app-name-1", "mail"},
                          {"ipaddress", "192.0.2.55"},
                          {"ip-protocol-mode", "IPv4"},
                          {"currentPhoneNumber", "3100"},
                          {"related-device-type", "Veltria 80"}});
        mPhonelet = new AGPPhonelet();
        AGPPhoneletManager::setAGPPhonelet(mPhonelet);
    }
    void TearDown() override {
        delete mPhonelet;
        AGPPhoneletManager::setAGPPhonelet(nullptr);
    }
    void configure(std::vector<std::pair<std::string, std::string>> values) {
        mStore.setValues(values);
        AGPDataObserver* configuration = AGPPhoneletManager::getAGPDataObserver();
        configuration->startAGPDataObserver(&mStore);
        ASSERT_TRUE(configuration->updateXMLApplicationConfiguration("Weather"));
    }
    void startQueues(int count) {
        AGPPhoneletManager::getAGPServerConnection();
        AGPPhoneletManager::getAGPXMLParser();
        AGPPhoneletManager::getAGPGUIHandler();
        ASSERT_TRUE(AGPPhoneletManager::getAGPMessageQueueHandler()->startAGPMessageQueueHandler(count));
        AGPPhoneletManager::getAGPMessageQueueHandler()->stopReadingQueues();
    }
    static std::string queued(int queue, const std::string& type, const std::string& priority,
                              const std::string& content) {
        return "queueId: " + std::to_string(queue) + ", type: " + type + ", prio: " + priority + "|" +
               content;
    }
    // "queueId: q, type: t, prio: p|content" of every message queued, in order.
    static std::vector<std::string> queuedMessages(const LogCapture& log) {
        std::vector<std::string> result;
        for (const std::string& text : log.texts("AGPMessageQueueHandler")) {
            const size_t start = text.find("queueId: ");
            const size_t idAt = text.find(", id:");
            const size_t content = text.find("Message content: ");
            if (text.rfind("Add message", 0) == 0 && start != std::string::npos &&
                content != std::string::npos) {
                result.push_back(text.substr(start, idAt - start) + "|" + text.substr(content + 17));
            }
        }
        return result;
    }

    EventLoop mLoop;
    ConfigurationStore mStore{mLoop};
    AGPPhonelet* mPhonelet = nullptr;
};

} // namespace

TEST_F(PhoneletRequests, ApplicationUrls) {
    configure({});
    const std::string phone = "ipaddress=192.0.2.55&phonenumber=3100&devicetype=Veltria";
    EXPECT_EQ(mPhonelet->getApplicationURL(AGPPhonelet::STARTUP_URL, "", "", ""),
              "https://192.0.2.10:443/app/start?" + phone);
    EXPECT_EQ(mPhonelet->getApplicationURL(AGPPhonelet::PUSH_URL, "/push", "8080", "http"),
              "http://192.0.2.10:8080/push")
        << "a push URL carries no phone parameters";
    EXPECT_EQ(mPhonelet->getApplicationURL(AGPPhonelet::STARTUP_PUSH_URL, "p", "", ""),
              "https://192.0.2.10:443/p?" + phone);
    EXPECT_EQ(mPhonelet->getApplicationURL(AGPPhonelet::REMOTE_TRACE_URL, "", "", ""),
              "https://192.0.2.10:443/app/start?" + phone)
        << "without remote debugging the trace goes to the ordinary program";

    configure({{"program-name-1", "start?a=1"},
               {"remote-debug-1", "Enabled"},
               {"debug-prog-name-1", "debug"},
               {"related-device-type", "Brisa Set 55"}});
    EXPECT_EQ(mPhonelet->getApplicationURL(AGPPhonelet::STARTUP_URL, "", "", ""),
              "https://192.0.2.10:443/start?a=1&ipaddress=192.0.2.55&phonenumber=3100&devicetype=brs55");
    EXPECT_EQ(mPhonelet->getApplicationURL(AGPPhonelet::REMOTE_TRACE_URL, "", "", ""),
              "https://192.0.2.10:443/debug?ipaddress=192.0.2.55&phonenumber=3100&devicetype=brs55");
    configure({{"program-name-1", ""}});
    EXPECT_EQ(mPhonelet->getApplicationURL(AGPPhonelet::STARTUP_URL, "", "", ""), "");
}

TEST_F(PhoneletRequests, PushesGoToTheirTabs) {
    LogCapture log(6);
    configure({{"num-tabs-1", "3"}, {"app-all-tabs-start-1", "false"}});
    startQueues(4);
    const std::string base =
        "https://192.0.2.10:443/app/start?ipaddress=192.0.2.55&phonenumber=3100&devicetype="
        "Veltria";
    mPhonelet->pushInternal("ServerAddr=192.0.2.10&ProgramName=p2", "sport", 1, false);
    EXPECT_EQ(queuedMessages(log), (std::vector<std::string>{queued(2, "UrlRequest_XML_push_queue", "Mid",
                                                                    "https://192.0.2.10:443/p2")}));

    log.clear();
    configure({{"num-tabs-1", "3"}, {"app-all-tabs-start-1", "true"}});
    mPhonelet->pushInternal("ServerAddr=192.0.2.10&ProgramName=p3&ServerPort=80&ServerProtocol=http", "mail",
                            3, false);
    EXPECT_EQ(
        queuedMessages(log),
        (std::vector<std::string>{queued(1, "UrlRequest_XML_push_force", "Mid", base + "&tab=internal:news"),
                                  queued(3, "UrlRequest_XML_push_force", "Mid", "http://192.0.2.10:80/p3")}))
        << "tab 2 exists since the first push, so it is not started again";

    log.clear();
    mPhonelet->pushInternal("ServerAddr=[2001:db8::1]&ProgramName=x", "news", 1, false);
    mPhonelet->pushInternal("ServerAddr=192.0.2.10", "Nobody", 1, false);
    mPhonelet->pushInternal("ServerAddr=192.0.2.10", "news", 7, false);
    EXPECT_TRUE(queuedMessages(log).empty()) << "other server, unknown application, unknown type";
    EXPECT_TRUE(log.contains("AGPPhonelet", 5, "pushInternal: server address doesn't match"));
    AGPPhoneletManager::shutdownPhonelet();
}

TEST_F(PhoneletRequests, StartUpWithoutTabsAndTheErrorDocument) {
    LogCapture log(6);
    configure({});
    startQueues(1);
    std::string base = mPhonelet->getApplicationURL(AGPPhonelet::STARTUP_URL, "", "", "");
    std::string none;
    mPhonelet->initiateStartupUriRequest(base, none, AGPMessage::UrlRequest_XML, 0);
    ASSERT_EQ(queuedMessages(log).size(), 1u);
    EXPECT_EQ(queuedMessages(log)[0], queued(0, "UrlRequest_XML", "Low", base));

    log.clear();
    std::string details = "Network connection error\nRequested URI: http://h/a?x=1&y=<2>";
    mPhonelet->displayErrorRequest("xml.app.error.network", details);
    std::string again = "second";
    mPhonelet->displayErrorRequest("xml.app.error.parser", again);
    const std::string escaped = "Network connection error\nRequested URI: http://h/a?x=1&amp;y=&lt;2&gt;";
    const std::string document =
        "<?xml version=\"1.0\" encoding=\"UTF-8\" ?><IppDisplay InitialScreen=\"1\"><IppScreen ID=\"1\" "
        "HiddenCount=\"0\" CommandCount=\"1\"><IppTextBox MaxSize=\"" +
        std::to_string(escaped.size() + 1000) +
        "\" Constraint=\"ANY\" Uneditable=\"YES\" Default=\"TEXT\" ExitAppearance=\"BOTH\"><Title>XML "
        "application</Title><Text>The application server cannot be reached.\n\nPress Exit to close the "
        "application.\n\n\n\n\n\n\nDetails:\n" +
        escaped +
        "</Text></IppTextBox><IppCommand Type=\"EXIT\"><Label>Exit</Label><ScreenID>1</ScreenID></IppCommand>"
        "</IppScreen></IppDisplay>";
    EXPECT_EQ(queuedMessages(log),
              (std::vector<std::string>{queued(0, "UrlRequest_Display_Error", "High", document)}))
        << "one error document, even when a second error follows";
    EXPECT_EQ(mPhonelet->push("ServerAddr=192.0.2.10", "Weather", 1), 0);
    AGPPhoneletManager::shutdownPhonelet();
}
