// The phonelet loaded as a plug-in into the emulated phone, against a loopback application server.
#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "logging/LogCapture.h"

namespace {

// The download file is named after the application, so tests that run at the same time use
// names of their own.
std::string uniqueApplicationName() {
    return std::string("Weather-") + ::testing::UnitTest::GetInstance()->current_test_info()->name();
}

PhoneOptions weatherPhone() {
    PhoneOptions options;
    options.applicationName = uniqueApplicationName();
    return options;
}

class PhoneletPlugin : public ::testing::Test {
protected:
    void configure(std::vector<std::pair<std::string, std::string>> extra = {}) {
        std::vector<std::pair<std::string, std::string>> values = {
            {"app-name-1", uniqueApplicationName()},
            {"server-addr-1", "127.0.0.1"},
            {"server-port-1", std::to_string(mServer.port())},
            {"transport-1", "http"},
            {"program-name-1", "app/start"},
            {"num-tabs-1", "0"},
            {"ipaddress", "192.0.2.55"},
            {"ip-protocol-mode", "IPv4"},
            {"currentPhoneNumber", "3100"},
            {"language", "en"}};
        values.insert(values.end(), extra.begin(), extra.end());
        ASSERT_TRUE(mPhone.configuration().setValues(values));
    }
    void load() {
        std::string error;
        ASSERT_TRUE(mPhone.loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
    }
    std::string screenText() {
        mPhone.display().waitUntilSettled();
        return mPhone.display().snapshot().dump();
    }

    ApplicationServer mServer;
    EmulatedPhone mPhone{weatherPhone()};
};

} // namespace

TEST(PluginLoader, ReportsWhatIsWrong) {
    PluginLoader loader;
    std::string error;
    EXPECT_FALSE(loader.load("/nonexistent/libagpphonelet.so", error));
    EXPECT_NE(error.find("cannot load the phonelet plug-in /nonexistent/libagpphonelet.so"),
              std::string::npos);
    EXPECT_EQ(loader.createPhonelet(), nullptr);
}

TEST_F(PhoneletPlugin, StartsRequestsTheApplicationAndShutsDownCleanly) {
    LogCapture log(5);
    configure();
    load();
    mPhone.start();
    ASSERT_TRUE(mServer.waitForRequests(1));
    EXPECT_EQ(mServer.requests()[0], "/app/start?devicetype=Veltria&ipaddress=192.0.2.55&phonenumber=3100");
    EXPECT_NE(screenText().find("Starting application..."), std::string::npos);
    EXPECT_TRUE(log.contains("AGPPhonelet", 5, "AGPPhonelet started\n"));
    EXPECT_TRUE(log.contains("AGPXMLParser", 5, "AGPXMLParser started successfully"));

    mPhone.stop();
    EXPECT_TRUE(log.contains("AGPPhonelet", 5, "AGPPhonelet::shutdown() complete\n"));
    EXPECT_TRUE(log.contains("AGPMessageQueueHandler", 5, "Destroy AGPMessageQueueHandler"));
    EXPECT_FALSE(mPhone.isRunning());
}

TEST_F(PhoneletPlugin, TabModeStartsEveryTabWithItsName) {
    configure({{"num-tabs-1", "3"},
               {"app-all-tabs-start-1", "true"},
               {"tab1-app-name-1", "news"},
               {"tab2-app-name-1", "sport"},
               {"tab3-app-name-1", "mail"},
               {"tab1-display-name-1", "News"}});
    load();
    mPhone.start();
    ASSERT_TRUE(mServer.waitForRequests(3));
    std::vector<std::string> requests = mServer.requests();
    std::sort(requests.begin(), requests.end());
    const std::string base =
        "/app/start?devicetype=Veltria&ipaddress=192.0.2.55&phonenumber=3100&tab=internal:";
    EXPECT_EQ(requests, (std::vector<std::string>{base + "mail", base + "news", base + "sport"}));
    EXPECT_NE(screenText().find("News"), std::string::npos) << "the tab bar shows the configured label";
}

TEST_F(PhoneletPlugin, PushesWaitingForTheStartUpAreBounded) {
    LogCapture log(2);
    mServer.setDocument("");
    configure();
    load();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(mPhone.push("ServerAddr=127.0.0.1&ProgramName=early", uniqueApplicationName(), 1), 1) << i;
    }
    EXPECT_EQ(mPhone.push("ServerAddr=127.0.0.1&ProgramName=one-too-many", uniqueApplicationName(), 1), 0);
    EXPECT_TRUE(log.contains("AGPPhonelet", 2, "push: 20 pushes already wait for the start-up; refused"));
    mPhone.start();
    ASSERT_TRUE(mServer.waitForRequests(1));
    mPhone.stop();
    for (const std::string& request : mServer.requests()) {
        EXPECT_EQ(request.find("one-too-many"), std::string::npos);
    }
}

TEST_F(PhoneletPlugin, PushesAreCheckedAndQueued) {
    LogCapture log(5);
    // An empty reply installs nothing; a refused document would bring up the error document,
    // which closes the phonelet to pushes.
    mServer.setDocument("");
    configure();
    load();
    EXPECT_EQ(mPhone.push("ServerAddr=127.0.0.1&ProgramName=early", uniqueApplicationName(), 1), 1)
        << "kept until start-up";
    mPhone.start();
    ASSERT_TRUE(mServer.waitForRequests(1));
    EXPECT_EQ(mServer.requests()[0], "/early?devicetype=Veltria&ipaddress=192.0.2.55&phonenumber=3100")
        << "an early push replaces the start-up request and carries the phone's parameters";

    EXPECT_EQ(
        mPhone.push("ServerAddr=127.0.0.1&ProgramName=later&ServerContextKey=k&ServerContextValue=v%2Fw",
                    uniqueApplicationName(), 4),
        1);
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(mServer.requests()[1], "/later?k=v/w");

    EXPECT_EQ(mPhone.push("ServerAddr=192.0.2.99&ProgramName=other", uniqueApplicationName(), 1), 1);
    EXPECT_EQ(mPhone.push("ServerAddr=127.0.0.1&ProgramName=unknown-app", "Nobody", 1), 1);
    EXPECT_EQ(mPhone.push("ServerAddr=127.0.0.1&ProgramName=bad-type", uniqueApplicationName(), 9), 1);
    EXPECT_TRUE(log.contains("AGPPhonelet", 5, "pushInternal: server address doesn't match"));
    mPhone.stop();
    EXPECT_EQ(mServer.requests().size(), 2u)
        << "wrong server, unknown application and unknown type send nothing";
    EXPECT_EQ(mPhone.push("ServerAddr=127.0.0.1", uniqueApplicationName(), 1), -1);
}

TEST_F(PhoneletPlugin, MissingServicesAndConfigurationFailStartUp) {
    LogCapture log(5);
    configure();
    mPhone.removeService("HttpServiceIfc");
    load();
    mPhone.start();
    EXPECT_TRUE(log.contains("AGPPhonelet", 2, "Can't find Http Ifc Service"));
    const std::string screen = screenText();
    EXPECT_NE(screen.find("Starting application..."), std::string::npos);
    EXPECT_NE(screen.find("The application could not be started"), std::string::npos);
    EXPECT_TRUE(mServer.requests().empty());
}

TEST(PhoneletPluginServices, EachMissingServiceFailsStartUpWithItsText) {
    const std::pair<const char*, const char*> services[] = {
        {"DirectoryServiceIfc", "Can't find Directory Service"},
        {"PhoneletManagerIfc", "Can't find PhoneletManager Service"},
        {"CSTAServiceIfc", "Can't find CSTA Service"},
        {"PhysicalInterfaceServiceIfc", "Can't find Physical Ifc Service"},
        {"ClockServiceIfc", "Can't find Clock Ifc Service"},
        {"MediaControlServiceIfc", "Can't find Media Control Service"},
    };
    for (const auto& service : services) {
        LogCapture log(2);
        EmulatedPhone phone(weatherPhone());
        phone.configuration().setValues(
            {{"app-name-1", uniqueApplicationName()}, {"program-name-1", "start"}});
        phone.removeService(service.first);
        std::string error;
        ASSERT_TRUE(phone.loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        phone.start();
        EXPECT_TRUE(log.contains("AGPPhonelet", 2, service.second)) << service.first;
        phone.display().waitUntilSettled();
        EXPECT_NE(phone.display().snapshot().dump().find("The application could not be started"),
                  std::string::npos)
            << service.first;
    }
    LogCapture log(2);
    EmulatedPhone phone(weatherPhone());
    phone.removeService("LocalMgmtIfc");
    std::string error;
    ASSERT_TRUE(phone.loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
    phone.start();
    EXPECT_TRUE(log.contains("AGPPhonelet", 2, "Can't find VEXA Service"));
}

TEST_F(PhoneletPlugin, OddTabCountsAndProgramNamesRequestNothing) {
    for (const char* numTabs : {"5", "x", ""}) {
        LogCapture log(5);
        EmulatedPhone phone(weatherPhone());
        phone.configuration().setValues({{"app-name-1", uniqueApplicationName()},
                                         {"server-addr-1", "127.0.0.1"},
                                         {"server-port-1", std::to_string(mServer.port())},
                                         {"transport-1", "http"},
                                         {"program-name-1", "start"}});
        phone.configuration().setValue("num-tabs-1", numTabs);
        std::string error;
        ASSERT_TRUE(phone.loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        phone.start();
        const std::string queues = std::string(numTabs) == "5" ? "6" : "1";
        EXPECT_TRUE(log.contains("AGPMessageQueueHandler", 5, "Creating " + queues + " messageQueues"))
            << numTabs;
        EXPECT_TRUE(log.contains("AGPPhonelet", 2,
                                 "No start-up request: num-tabs is \"" + std::string(numTabs) +
                                     "\"; \"0\" is one screen without tabs, 1 to 3 are tabs"))
            << "the phone says why it waits: " << numTabs;
        phone.stop();
    }
    configure({{"program-name-1", ""}});
    load();
    mPhone.start();
    mPhone.stop();
    EXPECT_TRUE(mServer.requests().empty())
        << "tab counts of 4 or more, unreadable ones and no program: no request";
}

TEST_F(PhoneletPlugin, StopsDuringATransferAndOnlyOnce) {
    LogCapture log(5);
    configure({{"program-name-1", "slow"}});
    load();
    mPhone.start();
    ASSERT_TRUE(mServer.waitForRequests(1));
    mPhone.stop(); // the transfer under way is cut short instead of holding the stop
    mPhone.stop();
    EXPECT_FALSE(mPhone.isRunning());
    const auto texts = log.texts("AGPPhonelet");
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Shutting down AGP Phonelet"), 1);
}

TEST_F(PhoneletPlugin, UnknownApplicationNameStopsBeforeTheStartUpScreen) {
    LogCapture log(5);
    configure({{"app-name-1", "weather"}});
    load();
    mPhone.start();
    EXPECT_TRUE(log.contains("AGPDataObserver", 5,
                             "Couldn't find index of XML Application [" + uniqueApplicationName() + "]"));
    EXPECT_TRUE(log.contains("AGPPhonelet", 2, "Failed to update XML application configuration"));
    EXPECT_EQ(screenText().find("Starting application..."), std::string::npos);
}

TEST_F(PhoneletPlugin, NetworkFailureShowsTheErrorDocument) {
    LogCapture log(5);
    configure({{"server-port-1", "1"}});
    load();
    mPhone.start();
    for (int i = 0; i < 500 && log.texts("AGPPhonelet").size() < 20; ++i) {
        if (log.contains(
                "AGPPhonelet", 5,
                "displayErrorRequest: xml.app.error.network, Network connection error\nRequested URI: "
                "http://127.0.0.1:1/app/start?ipaddress=192.0.2.55&phonenumber=3100&devicetype=Veltria")) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(log.contains(
        "AGPPhonelet", 5,
        "displayErrorRequest: xml.app.error.network, Network connection error\nRequested URI: "
        "http://127.0.0.1:1/app/start?ipaddress=192.0.2.55&phonenumber=3100&devicetype=Veltria"));
    EXPECT_EQ(mPhone.push("ServerAddr=127.0.0.1", uniqueApplicationName(), 1), 0)
        << "pushes are refused after an error";
}
