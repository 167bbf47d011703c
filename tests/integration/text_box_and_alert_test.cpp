// Text box and alert screens on the emulated phone, driven by keys against a loopback application server.
#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "PhoneScreens.h"
#include "display/Input.h"

namespace {

using DisplayAPI::Key;
using nlohmann::json;

PhoneOptions phoneOptions() {
    PhoneOptions options;
    options.applicationName = uniqueApplicationName("Screens-");
    return options;
}

class TextScreens : public ::testing::Test {
protected:
    void start(const std::string& document, const std::string& port = "") {
        mServer.setDocument("/app/start", document);
        ASSERT_TRUE(mPhone.configuration().setValues(loopbackApplication(
            uniqueApplicationName("Screens-"), port.empty() ? std::to_string(mServer.port()) : port)));
        std::string error;
        ASSERT_TRUE(mPhone.loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        mPhone.start();
    }
    std::string url(const std::string& path) {
        return "http://127.0.0.1:" + std::to_string(mServer.port()) + path;
    }
    json snapshot() {
        mPhone.display().waitUntilSettled();
        return mPhone.display().snapshot();
    }
    template <class Predicate> bool waitFor(Predicate predicate) {
        return predicate(waitForScreen(mPhone, predicate));
    }
    bool waitForScreenText(const std::string& text) {
        return waitFor([&](const json& s) {
            return s["screen"].is_object() && s["screen"].value("text", std::string()) == text;
        });
    }
    bool waitForPopup(const char* kind) {
        return waitFor([&](const json& s) { return popupIs(s, kind); });
    }
    bool waitForNoPopup() {
        return waitFor([](const json& s) { return s["popup"].is_null(); });
    }
    void pressSoftKey(const std::string& label) {
        const json keys = snapshot()["softKeys"];
        for (size_t i = 0; i < keys.size(); ++i) {
            if (keys[i] == label) {
                mPhone.display().pressKey(DisplayAPI::softKey(static_cast<int>(i) + 1));
                return;
            }
        }
        ADD_FAILURE() << "no soft key " << label << " in " << keys.dump();
    }
    // The phone stops its phonelet on its event thread, so that is where the answer is read.
    bool isRunning() {
        bool running = true;
        mPhone.loop().runAndWait([&] { running = mPhone.isRunning(); });
        return running;
    }
    bool waitUntilStopped() {
        for (int i = 0; i < 500 && isRunning(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return !isRunning();
    }

    ApplicationServer mServer;
    EmulatedPhone mPhone{phoneOptions()};
};

} // namespace

TEST_F(TextScreens, TypedTextIsSentOnlyOnceConfirmed) {
    start("<IppDisplay InitialScreen=\"1\"><IppScreen ID=\"1\" CommandCount=\"1\">"
          "<IppTextBox MaxSize=\"10\" Default=\"TEXT\" Key=\"city\"><Title>City</Title><Text>Bonn</Text>"
          "<Url>" +
          url("/app/submit") +
          "</Url></IppTextBox>"
          "<IppCommand Type=\"SELECT\" Key=\"go\" Value=\"1\"><Label>Send</Label></IppCommand>"
          "</IppScreen></IppDisplay>");
    ASSERT_TRUE(waitForScreenText("Bonn"));
    const json screen = snapshot()["screen"];
    EXPECT_EQ(screen["kind"], "textBox");
    EXPECT_EQ(screen["title"], "City");
    EXPECT_EQ(screen["maxSize"], 10);
    EXPECT_EQ(screen["readOnly"], false);
    EXPECT_EQ(screen["textType"], 1);

    for (int i = 0; i < 3; ++i) {
        mPhone.display().pressKey(Key::Left);
    }
    mPhone.display().typeText("erlin, Mitte");
    ASSERT_TRUE(waitForScreenText("Berlin, Mi")) << "the maximum size cuts the entry";
    pressSoftKey("Send");
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(mServer.requests()[1], "/app/submit?city=Bonn&go=1") << "unconfirmed typing is not sent";

    mPhone.display().pressKey(Key::Ok);
    pressSoftKey("Send");
    ASSERT_TRUE(mServer.waitForRequests(3));
    EXPECT_EQ(mServer.requests()[2], "/app/submit?city=Berlin, Mi&go=1");
}

TEST_F(TextScreens, NumericBoxRejectsWhatIsNoNumberAndCancelRestoresTheText) {
    start(
        "<IppDisplay InitialScreen=\"1\"><IppScreen ID=\"1\" CommandCount=\"2\">"
        "<IppTextBox Constraint=\"NUMERIC\" Default=\"TEXT\" Key=\"\"><Title>Count</Title><Text>42</Text>"
        "<Url>" +
        url("/app/count") +
        "</Url></IppTextBox>"
        "<IppCommand Type=\"UPDATE\" Key=\"u\" Value=\"2\" Priority=\"2\"><Label>Refresh</Label></IppCommand>"
        "<IppCommand Type=\"SELECT\" Priority=\"1\"><Label>Send</Label></IppCommand>"
        "</IppScreen></IppDisplay>");
    ASSERT_TRUE(waitForScreenText("42"));
    EXPECT_EQ(snapshot()["screen"]["textType"], 2);
    EXPECT_EQ(snapshot()["softKeys"][0], "Send") << "commands in priority order";

    mPhone.display().typeText("99999999999");
    mPhone.display().pressKey(Key::Ok);
    // The alert comes first and the confirmed text goes back into the box just after it.
    ASSERT_TRUE(waitFor([](const json& s) { return popupIs(s, "alert") && s["screen"]["text"] == "42"; }))
        << "a number too large for the phone is no number";
    json popup = snapshot()["popup"];
    EXPECT_EQ(popup["title"], "Invalid number");
    EXPECT_EQ(popup["text"], "Please enter digits only.");
    EXPECT_EQ(popup["alertType"], 5);
    EXPECT_EQ(popup["commands"], json::array({"Cancel"}));
    EXPECT_EQ(snapshot()["screen"]["text"], "42");

    mPhone.display().typeText("0");
    mPhone.display().pressKey(Key::Back); // the alert's only command: Cancel
    ASSERT_TRUE(waitForNoPopup());
    EXPECT_EQ(snapshot()["screen"]["text"], "42");

    mPhone.display().typeText("7");
    mPhone.display().pressKey(Key::Ok);
    pressSoftKey("Send");
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(mServer.requests()[1], "/app/count?null=427") << "an empty Key sends as null";
    pressSoftKey("Refresh");
    ASSERT_TRUE(mServer.waitForRequests(3));
    EXPECT_EQ(mServer.requests()[2], "/app/count?u=2") << "an update sends no text";
}

TEST_F(TextScreens, ErrorDocumentIsShownInFullAndExitEndsTheApplication) {
    start("", "1");
    ASSERT_TRUE(
        waitFor([](const json& s) { return !s["screen"].is_null() && s["screen"]["kind"] == "textBox"; }));
    const json screen = snapshot()["screen"];
    EXPECT_EQ(screen["title"], "XML application");
    EXPECT_EQ(screen["readOnly"], true);
    const std::string text = screen["text"];
    const std::string details =
        "Details:\nNetwork connection error\nRequested URI: "
        "http://127.0.0.1:1/app/start?ipaddress=192.0.2.55&phonenumber=3100&devicetype=Veltria";
    EXPECT_EQ(
        text.rfind("The application server cannot be reached.\n\nPress Exit to close the application.", 0),
        0u)
        << text;
    ASSERT_GE(text.size(), details.size());
    EXPECT_EQ(text.substr(text.size() - details.size()), details) << "nothing is cut off";

    mPhone.display().typeText("x");
    mPhone.display().pressKey(Key::Back);
    ASSERT_TRUE(waitForPopup("popupConfirm")) << "Exit is offered on Back as well";
    EXPECT_EQ(snapshot()["popup"]["entries"], json::array({"Exit"}));
    EXPECT_EQ(snapshot()["screen"]["text"], text) << "read-only";
    mPhone.display().pressKey(Key::Back);
    ASSERT_TRUE(waitForNoPopup());

    pressSoftKey("Exit");
    EXPECT_TRUE(waitUntilStopped());
}

TEST_F(TextScreens, AlertsAreDismissedOnceByKeyOrByTheirDelay) {
    const std::string alertScreens =
        "<IppScreen ID=\"2\"><IppAlert "
        "Type=\"info\"><Title>Note</Title><Text>Saved</Text></IppAlert></IppScreen>"
        "<IppScreen ID=\"3\"><IppAlert Delay=\"500\" Type=\"WARNING\"><Text>Soon gone</Text></IppAlert>"
        "</IppScreen>"
        "<IppScreen ID=\"4\" CommandCount=\"1\"><IppAlert Delay=\"1000\"><Text>Sending</Text><Url>" +
        url("/app/alert") +
        "</Url></IppAlert><IppCommand Type=\"SELECT\" Key=\"k\" Value=\"v\"/></IppScreen>";
    start("<IppDisplay InitialScreen=\"1\"><IppScreen ID=\"1\" CommandCount=\"3\">"
          "<IppTextBox Default=\"TEXT\"><Text>Home</Text></IppTextBox>"
          "<IppCommand Type=\"SCREEN\"><Label>Note</Label><ScreenID>2</ScreenID></IppCommand>"
          "<IppCommand Type=\"SCREEN\"><Label>Later</Label><ScreenID>3</ScreenID></IppCommand>"
          "<IppCommand Type=\"SCREEN\"><Label>Auto</Label><ScreenID>4</ScreenID></IppCommand>"
          "</IppScreen>" +
          alertScreens + "</IppDisplay>");
    ASSERT_TRUE(waitForScreenText("Home"));

    for (Key key : {Key::Ok, Key::Back}) {
        pressSoftKey("Note");
        ASSERT_TRUE(waitForPopup("alert"));
        const json popup = snapshot()["popup"];
        EXPECT_EQ(popup["title"], "Note");
        EXPECT_EQ(popup["text"], "Saved");
        EXPECT_EQ(popup["alertType"], 3) << "a type in lower case is no known type";
        EXPECT_EQ(popup["commands"], json::array({"OK"})) << "the made-up dismiss command";
        EXPECT_EQ(snapshot()["screen"]["text"], "Home") << "the alert stands over the screen";
        mPhone.display().pressKey(key);
        mPhone.display().pressKey(key); // a second dismissal of the same display is dropped
        ASSERT_TRUE(waitForNoPopup());
        EXPECT_EQ(snapshot()["screen"]["text"], "Home");
    }

    pressSoftKey("Later");
    ASSERT_TRUE(waitForPopup("alert"));
    EXPECT_EQ(snapshot()["popup"]["alertType"], 5);
    EXPECT_TRUE(waitForNoPopup()) << "the delay dismisses the alert by itself";
    EXPECT_EQ(snapshot()["screen"]["text"], "Home");

    pressSoftKey("Auto");
    ASSERT_TRUE(waitForPopup("alert"));
    EXPECT_EQ(snapshot()["popup"]["commands"], json::array({"Select"}));
    ASSERT_TRUE(mServer.waitForRequests(2)) << "the delay fires the alert's only command";
    EXPECT_EQ(mServer.requests()[1], "/app/alert?k=v");
    EXPECT_TRUE(isRunning());
}
