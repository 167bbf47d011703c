// Whole applications on the emulated phone against a loopback server: remote traces, caching,
// tabs, dismissed alerts, pushes, timers, file names and document encodings.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>
#include <thread>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "PhoneScreens.h"
#include "logging/LogCapture.h"

namespace {

using DisplayAPI::Key;
using nlohmann::json;
using Values = std::vector<std::pair<std::string, std::string>>;

std::string option(const std::string& key, const std::string& value, const std::string& label) {
    return "<Option Key=\"" + key + "\" Value=\"" + value + "\" Selected=\"FALSE\"><OptionText>" + label +
           "</OptionText></Option>";
}

std::string command(const std::string& type, const std::string& label, const std::string& attributes = "",
                    const std::string& children = "") {
    return "<IppCommand Type=\"" + type + "\"" + attributes + "><Label>" + label + "</Label>" + children +
           "</IppCommand>";
}

// A screen holding one list titled `title` whose OK sends to `url`.
std::string listScreen(const std::string& id, const std::string& title, const std::string& url,
                       const std::string& commands = "", int commandCount = 0) {
    return "<IppScreen ID=\"" + id + "\" CommandCount=\"" + std::to_string(commandCount) +
           "\"><IppList Count=\"1\"><Title>" + title + "</Title><Url>" + url + "</Url>" +
           option("pick", title, title) + "</IppList>" + commands + "</IppScreen>";
}

std::string display(const std::string& screens) {
    return "<IppDisplay>" + screens + "</IppDisplay>";
}

std::function<bool(const json&)> titleIs(const std::string& title) {
    return [title](const json& s) { return s["screen"].is_object() && s["screen"]["title"] == title; };
}

class Application : public ::testing::Test {
protected:
    // Serves `document` as "/app/start" (unless empty), configures the application with `extra`
    // on top of the loopback defaults, and starts the phone.
    void start(const std::string& document, const Values& extra = {}, bool softKeys = false,
               const std::string& name = "") {
        PhoneOptions options;
        options.applicationName = name.empty() ? uniqueApplicationName("Apps-") : name;
        options.model.softKeyBar = softKeys;
        mPhone = std::make_unique<EmulatedPhone>(options);
        if (!document.empty()) {
            mServer.setDocument("/app/start", document);
        }
        Values values = loopbackApplication(options.applicationName, std::to_string(mServer.port()));
        values.insert(values.end(), extra.begin(), extra.end());
        ASSERT_TRUE(mPhone->configuration().setValues(values));
        std::string error;
        ASSERT_TRUE(mPhone->loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        mPhone->start();
    }

    std::string url(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(mServer.port()) + path;
    }

    json waitFor(const std::function<bool(const json&)>& condition) {
        return waitForScreen(*mPhone, condition);
    }

    json press(Key key, const std::function<bool(const json&)>& condition) {
        mPhone->display().pressKey(key);
        return waitFor(condition);
    }

    void pressSoftKey(const std::string& label) {
        const json keys = mPhone->display().snapshot()["softKeys"];
        for (size_t i = 0; i < keys.size(); ++i) {
            if (keys[i] == label) {
                mPhone->display().pressKey(DisplayAPI::softKey(static_cast<int>(i) + 1));
                return;
            }
        }
        ADD_FAILURE() << "no soft key " << label << " in " << keys.dump();
    }

    // The phone stops its phonelet on its event thread, so that is where the answer is read.
    bool isRunning() {
        bool running = true;
        mPhone->loop().runAndWait([&] { running = mPhone->isRunning(); });
        return running;
    }

    ApplicationServer mServer;
    std::unique_ptr<EmulatedPhone> mPhone;
};

const Values kTwoTabs = {{"num-tabs-1", "2"},
                         {"tab1-app-name-1", "one"},
                         {"tab2-app-name-1", "two"},
                         {"tab1-display-name-1", "One"},
                         {"tab2-display-name-1", "Two"}};

TEST_F(Application, ElementsSendTheirTracesToTheDebugProgram) {
    const Values debugging = {{"remote-debug-1", "Enabled"}, {"debug-prog-name-1", "trace"}};
    mServer.setDocument("/app/chosen", "");
    start(display(listScreen("1", "Traced", url("/app/chosen"))), debugging);
    ASSERT_EQ(waitFor(titleIs("Traced"))["screen"]["title"], "Traced");
    mPhone->display().pressKey(Key::Ok);
    EXPECT_TRUE(
        mServer.waitForPost("/trace", "Receive message on a IppList: message=Command_OK , label=OK\n"))
        << mServer.posts().size() << " posts";
    ASSERT_TRUE(mServer.waitForRequests(2));

    // A form's soft key, on a phone that has them.
    mPhone->stop();
    start(display("<IppScreen ID=\"1\" CommandCount=\"1\"><IppForm ItemCount=\"1\"><Title>Form</Title><Url>" +
                  url("/app/chosen") +
                  "</Url><IppTextField Key=\"a\"><Label>A</Label></IppTextField></IppForm>" +
                  command("SELECT", "Send") + "</IppScreen>"),
          debugging, true);
    ASSERT_EQ(waitFor(titleIs("Form"))["softKeys"][0], "Send");
    mPhone->display().pressKey(Key::SoftKey1);
    EXPECT_TRUE(mServer.waitForPost("/trace", "Receive message on a IppForm: message="));
    ASSERT_TRUE(mServer.waitForRequests(4));
    EXPECT_EQ(mServer.requests().back(), "/app/chosen?a=");
}

// Back to the first screen shows its cached copy while its reply's cache time lasts.
TEST_F(Application, LongCacheTimesKeepTheScreenCached) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"Cache-Control", "max-age=999999999"},
        {"Expires", "Sun, 01 Jan 2040 00:00:00 GMT"},
        {"Cache-Control", "max-age=0"}};
    mServer.setDocument("/app/next",
                        display(listScreen("2", "Second", url("/app/none"), command("BACK", "Back"), 1)));
    for (const auto& header : cases) {
        SCOPED_TRACE(header.first + ": " + header.second);
        mServer.setHeaders("/app/start", {header});
        start(display(listScreen("1", "First", url("/app/next"))));
        ASSERT_EQ(waitFor(titleIs("First"))["screen"]["title"], "First");
        const size_t before = mServer.requests().size();
        mPhone->display().pressKey(Key::Ok);
        ASSERT_EQ(waitFor(titleIs("Second"))["screen"]["title"], "Second");
        json shot = press(Key::Back, [](const json& s) {
            return s["screen"]["title"] == "First" || popupIs(s, "popupConfirm");
        });
        if (popupIs(shot, "popupConfirm")) {
            shot = press(Key::Ok, titleIs("First"));
        }
        ASSERT_EQ(shot["screen"]["title"], "First") << shot.dump();
        mPhone->display().waitUntilSettled();
        const bool expired = header.second == "max-age=0";
        if (expired) {
            ASSERT_TRUE(mServer.waitForRequests(before + 2));
        }
        EXPECT_EQ(mServer.requests().size(), before + (expired ? 2 : 1))
            << "an expired screen is asked for again";
        mPhone->stop();
    }
}

TEST_F(Application, ASecondTabKeepsTheFirstTabsScreen) {
    LogCapture log(2);
    start(display(listScreen("1", "Home", url("/app/none"))), kTwoTabs);
    ASSERT_EQ(waitFor(titleIs("Home"))["screen"]["title"], "Home");
    // The second tab's document never comes.
    ASSERT_EQ(mPhone->push("ServerAddr=127.0.0.1&ProgramName=slow", "two", 1), 1);
    // The first tab's screen moves into the tab screen on that tab's own queue thread.
    json shot = waitFor([](const json& s) {
        return s["tabBar"].is_object() && s["screen"].is_object() && s["screen"]["title"] == "Home";
    });
    ASSERT_TRUE(shot["tabBar"].is_object()) << shot.dump();
    EXPECT_EQ(shot["tabBar"]["labels"], json({"One", "Two"}));
    EXPECT_EQ(shot["tabBar"]["current"], 0);
    EXPECT_EQ(shot["screen"]["title"], "Home") << "the first tab still shows its screen";
    EXPECT_TRUE(log.entries().empty()) << log.entries()[0].text;
}

TEST_F(Application, ThreeTabsStartWithoutAFaultLogged) {
    LogCapture log(5);
    mServer.setDocument(display(listScreen("1", "Any", url("/app/none"))));
    Values threeTabs = kTwoTabs;
    threeTabs.insert(threeTabs.end(),
                     {{"num-tabs-1", "3"}, {"app-all-tabs-start-1", "true"}, {"tab3-app-name-1", "three"}});
    start("", threeTabs);
    const auto shown = [&log] {
        const auto texts = log.texts("AGPGUIHandler");
        return std::count_if(texts.begin(), texts.end(), [](const std::string& text) {
            return text.rfind("commandShowScreen(", 0) == 0;
        });
    };
    for (int i = 0; i < 500 && shown() < 3; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_EQ(shown(), 3) << "every tab shows its screen";
    EXPECT_EQ(waitFor(titleIs("Any"))["tabBar"]["labels"].size(), 3u);
    for (const LogEntry& entry : log.entries()) {
        EXPECT_GT(entry.level, 2) << entry.module << ": " << entry.text;
    }
}

// A key on an alert that arrives after a reply replaced the alert must leave the new screen alone.
TEST_F(Application, DismissingAnAlertThatIsGoneChangesNothing) {
    const std::string alert =
        "<IppScreen ID=\"1\" CommandCount=\"2\"><IppAlert><Title>Ask</Title><Text>Fetch?</Text><Url>" +
        url("/slow") + "</Url></IppAlert>" + command("SELECT", "Fetch", " Key=\"k\" Value=\"v\"") +
        command("BACK", "Close") + "</IppScreen>";
    mServer.setDocument("/slow", display(listScreen("2", "Fetched", url("/app/none"))));
    for (const Values& tabs : {Values{}, kTwoTabs}) {
        SCOPED_TRACE(tabs.empty() ? "without tabs" : "in a tab");
        mServer.holdSlow();
        const size_t before = mServer.requests().size();
        start(display(alert), tabs, true);
        ASSERT_TRUE(popupIs(waitFor([](const json& s) { return popupIs(s, "alert"); }), "alert"));
        pressSoftKey("Fetch");
        ASSERT_TRUE(mServer.waitForRequests(before + 2));
        pressSoftKey("Close");
        mServer.releaseSlow();
        json shot = waitFor(titleIs("Fetched"));
        ASSERT_EQ(shot["screen"]["title"], "Fetched") << shot.dump();
        // The Close has been handled once the queue is idle again; give it a moment to act.
        for (int i = 0; i < 20 && isRunning(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            shot = waitFor([](const json&) { return true; });
        }
        EXPECT_TRUE(isRunning());
        EXPECT_EQ(shot["screen"]["title"], "Fetched") << shot.dump();
        EXPECT_TRUE(shot["popup"].is_null()) << shot.dump();
        mPhone->stop();
    }
}

TEST_F(Application, HidePopupWithNoPopupDoesNothing) {
    start(display("<IppScreen ID=\"1\"><IppList Count=\"1\"><Title>Plain</Title>" + option("k", "v", "V") +
                  "</IppList><IppAction Type=\"HIDEPOPUP\"/></IppScreen>"));
    ASSERT_EQ(waitFor(titleIs("Plain"))["screen"]["title"], "Plain");
    mPhone->display().waitUntilSettled();
    EXPECT_TRUE(isRunning());
    mPhone->lifeCycle("hide");
    mPhone->lifeCycle("show");
    EXPECT_EQ(waitFor(titleIs("Plain"))["screen"]["title"], "Plain");
    EXPECT_TRUE(isRunning());
}

TEST_F(Application, PushContextValuesAndThePhoneNumberArriveIntact) {
    mServer.setDocument("");
    start("", {{"currentPhoneNumber", "+49 89 1234"}});
    ASSERT_TRUE(mServer.waitForRequests(1));
    EXPECT_EQ(mServer.requests()[0],
              "/app/start?devicetype=Veltria&ipaddress=192.0.2.55&phonenumber=+49 89 1234");
    const std::string name = uniqueApplicationName("Apps-");
    EXPECT_EQ(mPhone->push(
                  "ServerAddr=127.0.0.1&ProgramName=ctx&ServerContextKey=who&ServerContextValue=%2B49%2089",
                  name, 1),
              1);
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(mServer.requests()[1], "/ctx?who=+49 89");
    EXPECT_EQ(
        mPhone->push("ServerAddr=127.0.0.1&ProgramName=ctx&ServerContextKey=say&ServerContextValue=a b&c",
                     name, 1),
        1);
    ASSERT_TRUE(mServer.waitForRequests(3));
    EXPECT_EQ(mServer.requests()[2], "/ctx?say=a b") << "a blank makes no invalid URL";
    EXPECT_TRUE(isRunning());
}

TEST_F(Application, AnAutoTooLongForTheTimerWaitsInsteadOfFiringAtOnce) {
    // 4294968 s in milliseconds wraps round 32 bits to 704 ms.
    start(display(listScreen("1", "Patient", url("/app/auto"),
                             command("SELECT", "Later", " Auto=\"4294968\" Key=\"a\" Value=\"1\""), 1)));
    ASSERT_EQ(waitFor(titleIs("Patient"))["screen"]["title"], "Patient");
    EXPECT_FALSE(mServer.waitForRequests(2, std::chrono::milliseconds(2000))) << mServer.requests().back();
}

// A forced push waits a moment before its popup comes up; the host must not wait with it.
TEST_F(Application, TheHostIsNotHeldWhileAForcedPopupWaits) {
    LogCapture log(5);
    mServer.setDocument("/alert",
                        display("<IppScreen ID=\"5\"><IppAlert><Title>Forced</Title><Text>Now</Text>"
                                "</IppAlert></IppScreen>"));
    start(display(listScreen("1", "Home", url("/app/none"))));
    ASSERT_EQ(waitFor(titleIs("Home"))["screen"]["title"], "Home");
    // Only an application in the background is brought up by force.
    ASSERT_TRUE(mPhone->lifeCycle("hide"));
    ASSERT_EQ(mPhone->push("ServerAddr=127.0.0.1&ProgramName=alert", uniqueApplicationName("Apps-"), 3), 1);
    const std::string waiting = "showPopupForced: waiting for the previous screen";
    for (int i = 0; i < 1000 && !log.contains("AGPGUIHandler", 5, waiting); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    const auto seen = std::chrono::steady_clock::now();
    ASSERT_TRUE(log.contains("AGPGUIHandler", 5, waiting));
    const bool early = std::chrono::steady_clock::now() - seen < std::chrono::milliseconds(300);
    ASSERT_TRUE(mPhone->lifeCycle("show"));
    // A show that began well within the second's wait must be over before the popup comes.
    if (early) {
        EXPECT_FALSE(popupIs(mPhone->display().snapshot(), "alert")) << "show waited for the popup";
    }
    EXPECT_TRUE(popupIs(waitFor([](const json& s) { return popupIs(s, "alert"); }), "alert"));
}

// Keys and the host's show and hide while forced pushes bring popups over a replaced screen.
TEST_F(Application, KeysAndShowsWhileForcedPushesReplaceTheScreen) {
    mServer.setDocument("/alert",
                        display("<IppScreen ID=\"5\"><IppAlert><Title>Forced</Title><Text>Now</Text>"
                                "</IppAlert></IppScreen>"));
    mServer.setDocument("/app/next", display(listScreen("2", "Next", url("/app/none"))));
    start(display(listScreen("1", "Home", url("/app/next"))), kTwoTabs);
    ASSERT_EQ(waitFor(titleIs("Home"))["screen"]["title"], "Home");
    std::atomic<bool> done{false};
    std::thread user([&] {
        const Key keys[] = {Key::Ok, Key::Down, Key::Back, Key::Up, Key::Ok, Key::Back};
        for (int i = 0; !done; ++i) {
            mPhone->display().pressKey(keys[i % 6]);
            mPhone->lifeCycle(i % 2 == 0 ? "hide" : "show");
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
        }
    });
    for (const std::string app : {"one", "two", "one"}) {
        EXPECT_EQ(mPhone->push("ServerAddr=127.0.0.1&ProgramName=alert", app, 3), 1);
        EXPECT_EQ(mPhone->push("ServerAddr=127.0.0.1&ProgramName=app/next", app, 4), 1);
    }
    ASSERT_TRUE(mServer.waitForRequests(7, std::chrono::milliseconds(20000)));
    done = true;
    user.join();
    mPhone->lifeCycle("show");
    EXPECT_FALSE(mPhone->display().snapshot()["screen"].is_null());
}

TEST_F(Application, NamesThatNoFileNameCanHoldStillLoad) {
    const std::string name = "Shop/Ost 1 " + uniqueApplicationName("");
    start(display(listScreen("1", "Loaded", url("/app/none"))), {}, false, name);
    EXPECT_EQ(waitFor(titleIs("Loaded"))["screen"]["title"], "Loaded");
}

TEST_F(Application, WindowsEncodingsAreRead) {
    // "€ é Š" in each encoding's own bytes.
    const std::pair<std::string, std::string> cases[] = {{"windows-1252", "\x80 \xE9 \x8A"},
                                                         {"ISO-8859-15", "\xA4 \xE9 \xA6"}};
    for (const auto& encoding : cases) {
        SCOPED_TRACE(encoding.first);
        start("<?xml version=\"1.0\" encoding=\"" + encoding.first + "\"?>" +
              display(listScreen("1", encoding.second, url("/app/none"))));
        const std::string expected = "\u20AC \u00E9 \u0160";
        EXPECT_EQ(waitFor(titleIs(expected))["screen"]["title"], expected);
        mPhone->stop();
    }
}

} // namespace
