// The phone around an application on the emulated phone: LED, tones, calls, typed keys and
// phone-book numbers, driven by documents from a loopback application server.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "PhoneScreens.h"
#include "TestPictures.h"
#include "display/Input.h"
#include "logging/LogCapture.h"

namespace {

using nlohmann::json;

namespace fs = std::filesystem;

// The phone's own files: contact pictures live in its /data/images folder.
struct PhoneFiles {
    PhoneFiles() : folder(fs::temp_directory_path() / uniqueApplicationName("agp-services-")) {
        fs::create_directories(folder / "data" / "images");
        std::ofstream(folder / "data" / "images" / "young.png", std::ios::binary) << TestPictures::png(14, 9);
    }
    ~PhoneFiles() {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    fs::path folder;
};

PhoneOptions phoneOptions(const PhoneFiles& files) {
    PhoneOptions options;
    options.applicationName = uniqueApplicationName("Services-");
    options.filesFolder = files.folder.string();
    options.skinFolder = AGP_SKIN_DIR;
    return options;
}

template <class Predicate> bool eventually(Predicate predicate) {
    for (int i = 0; i < 500; ++i) {
        if (predicate()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return predicate();
}

// A text box screen whose soft keys are ACTION commands, each running `actions[i]`.
std::string actionScreen(const std::string& screenActions, const std::vector<std::string>& keyActions) {
    std::string commands;
    for (size_t i = 0; i < keyActions.size(); ++i) {
        commands += "<IppCommand Type=\"ACTION\" Priority=\"" + std::to_string(i) + "\"><Label>K" +
                    std::to_string(i + 1) + "</Label>" + keyActions[i] + "</IppCommand>";
    }
    return "<IppDisplay><IppScreen ID=\"1\" CommandCount=\"" + std::to_string(keyActions.size()) + "\">" +
           screenActions +
           "<IppTextBox Default=\"TEXT\" Key=\"k\"><Title>Phone</Title><Text>ready</Text></IppTextBox>" +
           commands + "</IppScreen></IppDisplay>";
}

std::string tone(const std::string& length) {
    return "<IppAction Type=\"PLAYTONE\"><IppTone Length=\"" + length + "\"/></IppAction>";
}

std::string call(const std::string& number, const std::string& focus = "") {
    return "<IppAction Type=\"MAKECALL\"" + (focus.empty() ? "" : " Focus=\"" + focus + "\"") + "><Number>" +
           number + "</Number></IppAction>";
}

class PhoneServices : public ::testing::Test {
protected:
    void start(const std::string& document, std::vector<std::pair<std::string, std::string>> extra = {}) {
        mServer.setDocument("/app/start", document);
        mServer.setDocument("/app/keys", "");
        auto values = loopbackApplication(uniqueApplicationName("Services-"), std::to_string(mServer.port()));
        values.insert(values.end(), extra.begin(), extra.end());
        ASSERT_TRUE(mPhone.configuration().setValues(values));
        std::string error;
        ASSERT_TRUE(mPhone.loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        mPhone.start();
        ASSERT_TRUE(waitFor([](const json& s) {
            return (s["screen"].is_object() && s["screen"]["ownerId"] != 0) || popupIs(s, "alert");
        })) << snapshot().dump();
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
    void pressSoftKey(int number) { mPhone.display().pressKey(DisplayAPI::softKey(number)); }
    std::vector<int> beeps() {
        std::vector<int> numbers;
        for (const auto& beep : mPhone.media().beeps()) {
            numbers.push_back(beep.beepNumber);
        }
        return numbers;
    }
    bool shown() { return mPhone.describeState()["shown"].get<bool>(); }
    // The user goes back to the application past the call screen.
    void backToApplication() {
        ASSERT_TRUE(mPhone.lifeCycle("show"));
        ASSERT_TRUE(eventually([&] { return shown(); }));
    }
    bool ledOn() { return mPhone.describeState()["led"].get<bool>(); }
    bool logged(const std::string& module, int level, const std::string& text) {
        return eventually([&] { return mLog.contains(module, level, text); });
    }

    LogCapture mLog;
    ApplicationServer mServer;
    PhoneFiles mFiles;
    EmulatedPhone mPhone{phoneOptions(mFiles)};
};

} // namespace

TEST_F(PhoneServices, ActionsSwitchTheLedAndPlayEachToneLength) {
    start(actionScreen("<IppAction Type=\"TURNLEDON\"/>" + tone("LONG"),
                       {tone("SHORT"), tone("STANDARD"),
                        "<IppAction Type=\"PLAYTONE\"><IppTone Length=\"long\"/></IppAction>",
                        "<IppAction Type=\"TURNLEDOFF\"/><IppAction Type=\"PLAYTONE\"/>"}));
    ASSERT_TRUE(eventually([&] { return ledOn(); })) << "the screen's action switches the LED on";
    ASSERT_TRUE(eventually([&] { return beeps() == std::vector<int>{4}; })) << "LONG is the long beep";

    pressSoftKey(1);
    ASSERT_TRUE(eventually([&] { return beeps().size() == 2; }));
    pressSoftKey(2);
    ASSERT_TRUE(eventually([&] { return beeps().size() == 3; }));
    // A length in lower case is no length, and a tone action without a tone plays nothing; the
    // LED action beside it shows that the command ran.
    pressSoftKey(3);
    pressSoftKey(4);
    ASSERT_TRUE(eventually([&] { return !ledOn(); }));
    pressSoftKey(1);
    ASSERT_TRUE(eventually([&] { return beeps().size() == 4; }));
    EXPECT_EQ(beeps(), (std::vector<int>{4, 2, 3, 2})) << "commands run their actions every time";
}

TEST_F(PhoneServices, MakeCallRingsTheOtherSideAndAThirdCallIsRefused) {
    mPhone.callControl().setLocalNumber("3100");
    start(actionScreen(call("0301234"),
                       {call("0305555"), call("0306666"), call("12ab"), "<IppAction Type=\"ENDCALL\"/>"}));
    ASSERT_TRUE(eventually([&] { return mPhone.callControl().calls().size() == 1; }));
    const auto first = mPhone.callControl().calls()[0];
    EXPECT_EQ(first.calledDevice, "0301234");
    EXPECT_EQ(first.callingDevice, "3100") << "the phone's own number calls";
    EXPECT_EQ(mPhone.callControl().monitorCount(), 1u) << "one monitor on the phone's device";
    ASSERT_TRUE(eventually([&] { return !shown(); })) << "the call screen covers the application";

    backToApplication();
    pressSoftKey(1);
    ASSERT_TRUE(eventually([&] { return mPhone.callControl().calls().size() == 2; }));
    backToApplication();
    pressSoftKey(2);
    ASSERT_TRUE(logged("AGPCallHandler", 5, "AGPCallHandler::MakeOutgoingCall: two calls already active"));
    EXPECT_EQ(mPhone.callControl().calls().size(), 2u);

    // The far end hangs up the first call: the application may call again, but not a number
    // that cannot be dialled.
    ASSERT_TRUE(mPhone.callControl().hangUp(first.callId));
    ASSERT_TRUE(logged("AGPCallHandler", 5,
                       "handleCSTAConnectionClearedEvent received, crossRefId = monitor-1, callId = " +
                           first.callId));
    pressSoftKey(3);
    ASSERT_TRUE(logged("AGPCallHandler", 2, "AGPCallHandler::MakeOutgoingCall: makeCall failed"));
    pressSoftKey(2);
    ASSERT_TRUE(eventually([&] {
        const auto calls = mPhone.callControl().calls();
        return calls.size() == 2 && calls[1].calledDevice == "0306666";
    }));
    // ENDCALL without a number ends the latest call.
    backToApplication();
    pressSoftKey(4);
    ASSERT_TRUE(eventually([&] { return mPhone.callControl().calls().size() == 1; }));
    EXPECT_EQ(mPhone.callControl().calls()[0].calledDevice, "0305555");
}

TEST_F(PhoneServices, AnsweredCallBringsTheApplicationBackUnlessFocusIsDeclined) {
    start(actionScreen("", {call("0301234"), call("0305555", "NO"), call("")}),
          {{"video-allowed", "false"}, {"video-on", "false"}});
    pressSoftKey(3);
    ASSERT_TRUE(
        logged("AGPCallHandler", 5, "AGPCallHandler::MakeOutgoingCall: Destination phone number missing"));
    pressSoftKey(1);
    ASSERT_TRUE(eventually([&] { return mPhone.callControl().calls().size() == 1 && !shown(); }));
    ASSERT_TRUE(mPhone.callControl().answerCall("call-1"));
    EXPECT_TRUE(
        logged("AGPCallHandler", 5,
               "handleCSTAEstablishedEvent received, crossRefId = monitor-1, callId = call-1, hasFocus = 1"));
    ASSERT_TRUE(eventually([&] { return shown(); })) << "the answered call gives the application the front";

    pressSoftKey(2);
    ASSERT_TRUE(eventually([&] { return mPhone.callControl().calls().size() == 2 && !shown(); }));
    mLog.clear();
    ASSERT_TRUE(mPhone.callControl().answerCall("call-2"));
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_TRUE(mLog.texts("AGPCallHandler").empty()) << "Focus NO leaves the focus where it is";
    EXPECT_FALSE(shown());

    // With the last call gone the call screen leaves and the application is back.
    ASSERT_TRUE(mPhone.callControl().hangUp("call-1"));
    ASSERT_TRUE(mPhone.callControl().hangUp("call-2"));
    ASSERT_TRUE(eventually([&] { return shown(); }));
}

TEST_F(PhoneServices, KeyElementCollectsDigitsAndSendsThemToTheListUrl) {
    start("<IppPhone><IppDisplay><IppScreen ID=\"1\">"
          "<IppKey Keypad=\"YES\" SendKeys=\"YES\" BufferKeys=\"YES\" BufferLength=\"4\" TermKey=\"#\" "
          "UrlKey=\"typed\"/>"
          "<IppList><Title>Dial</Title><Url>" +
          url("/app/keys") +
          "</Url><Option Key=\"o\" Value=\"1\"><OptionText>One</OptionText></Option></IppList>"
          "</IppScreen></IppDisplay></IppPhone>");
    EXPECT_EQ(snapshot()["screen"]["title"], "Dial") << "a document wrapped in IppPhone shows";
    ASSERT_TRUE(eventually([&] { return mPhone.keypad().subscriberCount() == 1; }));
    for (int key : {5, 5, 11, 7}) {
        ASSERT_TRUE(mPhone.keypad().pressKey(key));
    }
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(mServer.requests()[1], "/app/keys?typed=55#");
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(mServer.requests().size(), 2u) << "after sending, keys wait for the screen's next showing";

    // Hidden, the application takes no keys at all.
    ASSERT_TRUE(mPhone.lifeCycle("hide"));
    ASSERT_TRUE(eventually([&] { return mPhone.keypad().subscriberCount() == 0; }));
}

TEST_F(PhoneServices, SubsequentKeysSendTheFirstAtOnceAndTheRestWhenTheScreenIsLeft) {
    start("<IppDisplay><IppScreen ID=\"1\"><IppKey Keypad=\"YES\" SendKeys=\"YES\" BufferKeys=\"SUBSEQUENT\" "
          "BufferLength=\"3\"/><IppList><Title>Dial</Title><Url>" +
          url("/app/keys") +
          "</Url><Option Key=\"o\" Value=\"1\"><OptionText>One</OptionText></Option></IppList>"
          "</IppScreen></IppDisplay>");
    ASSERT_TRUE(eventually([&] { return mPhone.keypad().subscriberCount() == 1; }));
    mPhone.display().pressKey(DisplayAPI::Key::Digit5);
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(mServer.requests()[1], "/app/keys?digit=5");
    mPhone.display().pressKey(DisplayAPI::Key::Digit1);
    EXPECT_FALSE(mPhone.keypad().pressKey(12)) << "not a dialpad key";
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(mServer.requests().size(), 2u) << "collecting";
    // Another screen takes the display: what was collected goes with it.
    mServer.setDocument("/app/other",
                        "<IppDisplay><IppScreen ID=\"2\"><IppTextBox Default=\"TEXT\" Key=\"k\">"
                        "<Text>other</Text></IppTextBox></IppScreen></IppDisplay>");
    EXPECT_EQ(
        mPhone.push("ServerAddr=127.0.0.1&ProgramName=app/other", mPhone.context().getApplicationName(), 1),
        1);
    ASSERT_TRUE(eventually([&] {
        for (const std::string& request : mServer.requests()) {
            if (request == "/app/keys?digit=1") {
                return true;
            }
        }
        return false;
    })) << ::testing::PrintToString(mServer.requests());
}

// Each key sends at once and its reply replaces the screen, while pushes replace it as well: key
// delivery on the event thread meets key elements that queue threads create and delete.
TEST_F(PhoneServices, KeysWhilePushesReplaceTheScreen) {
    const std::string document = "<IppDisplay><IppScreen ID=\"1\"><IppKey Keypad=\"YES\" SendKeys=\"YES\"/>"
                                 "<IppList><Title>Dial</Title><Url>" +
                                 url("/app/keys") +
                                 "</Url><Option Key=\"o\" Value=\"1\"><OptionText>One</OptionText></Option>"
                                 "</IppList></IppScreen></IppDisplay>";
    start(document);
    mServer.setDocument("/app/keys", document);
    std::thread typing([this] {
        for (int i = 0; i < 200; ++i) {
            mPhone.keypad().pressKey(i % 12);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(mPhone.push("ServerAddr=127.0.0.1&ProgramName=app/start",
                              mPhone.context().getApplicationName(), 1),
                  1);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    typing.join();
    ASSERT_TRUE(eventually([&] {
        for (const std::string& request : mServer.requests()) {
            if (request.rfind("/app/keys?digit=", 0) == 0) {
                return true;
            }
        }
        return false;
    }));
    EXPECT_TRUE(waitFor([](const json& s) { return s["screen"]["title"] == "Dial"; }));
}

TEST_F(PhoneServices, PhoneNumbersShowTheirContactsAndUnknownOnesTheirAlternative) {
    mPhone.directory().addEntry({"0123", "Xaver", "Young", "young.png", DirectoryRecord::Mobile});
    auto option = [](const std::string& value, const std::string& text) {
        return "<Option Key=\"n\" Value=\"" + value + "\"><OptionText>" + text + "</OptionText></Option>";
    };
    start("<IppDisplay><IppScreen ID=\"1\"><IppList Count=\"4\"><Title>Contacts</Title>" +
              option("1", "\t 0123 \n<IppPhoneNumber NumberType=\"BOTH\" ImageType=\"PHONETYPE\"/>") +
              option("2", "0123<IppPhoneNumber NumberType=\"NAME\" ImageType=\"PICTURECLIP\"/>") +
              option("3", "0999<IppPhoneNumber NumberType=\"NAME\"><AltText>Unknown "
                          "caller</AltText></IppPhoneNumber>") +
              option("4", "0888<IppPhoneNumber NumberType=\"BOTH\" "
                          "ImageType=\"PICTURECLIP\"><AltText/></IppPhoneNumber>") +
              "</IppList></IppScreen></IppDisplay>",
          {{"related-device-type", "Veltria 80"}, {"display-skin", "1"}});
    const json rows = snapshot()["screen"]["rows"];
    ASSERT_EQ(rows.size(), 4u) << rows.dump();
    EXPECT_EQ(rows[0]["columns"][0], "Young, Xaver, 0123");
    EXPECT_EQ(rows[0]["image"]["path"], ":/images/Skin2_WG/05_Icons/05_icon_phonenumber_mobile.png")
        << rows[0].dump();
    EXPECT_EQ(rows[0]["image"]["kind"], "png")
        << "the icon comes from the installed skin: " << rows[0].dump();
    EXPECT_EQ(rows[1]["columns"][0], "Young, Xaver");
    EXPECT_EQ(rows[1]["image"]["path"], "/data/images/young.png") << rows[1].dump();
    EXPECT_EQ(rows[1]["image"]["width"], 14) << "the contact's picture from the phone's files";
    EXPECT_EQ(rows[1]["image"]["height"], 9);
    EXPECT_EQ(rows[2]["columns"][0], "Unknown caller");
    EXPECT_EQ(rows[3]["columns"][0], "0888") << "an empty alternative shows the number";
    EXPECT_TRUE(rows[3]["image"].is_null()) << "no contact, no picture";
}

TEST_F(PhoneServices, PhoneWithoutNumberTypeIconsShowsNumbersAsUnknown) {
    mPhone.directory().addEntry({"0123", "Xaver", "Young", "young.png", DirectoryRecord::Mobile});
    start("<IppDisplay><IppScreen ID=\"1\"><IppList Count=\"1\"><Title>Contacts</Title><Option Key=\"n\" "
          "Value=\"1\">"
          "<OptionText>0123<IppPhoneNumber "
          "NumberType=\"NAME\"><AltText>?</AltText></IppPhoneNumber></"
          "OptionText>"
          "</Option></IppList></IppScreen></IppDisplay>",
          {{"related-device-type", "Desk 10"}});
    EXPECT_EQ(snapshot()["screen"]["rows"][0]["columns"][0], "?");
}

TEST_F(PhoneServices, AlertShowsNameAndNumberOnTwoLines) {
    mPhone.directory().addEntry({"0123", "Xaver", "Young", "", DirectoryRecord::Private});
    start("<IppDisplay><IppScreen ID=\"1\"><IppAlert Type=\"INFO\"><Title>Caller</Title>"
          "<Text>0123<IppPhoneNumber NumberType=\"BOTH\" ImageType=\"PICTURECLIP\"/></Text></IppAlert>"
          "</IppScreen></IppDisplay>",
          {{"related-device-type", "Veltria 60"}});
    const json shot = snapshot();
    const json& alert = shot["popup"];
    EXPECT_EQ(alert["text"], "Young, Xaver\n0123") << shot.dump();
    EXPECT_TRUE(alert["image"].is_null()) << "a contact without a picture gives none";
}

TEST_F(PhoneServices, RootOtherThanADisplayOrItsWrapperIsRefused) {
    start(
        "<IppPhone><IppDisplay><IppScreen ID=\"1\"><IppTextBox Default=\"TEXT\" Key=\"k\"><Text>first</Text>"
        "</IppTextBox></IppScreen></IppDisplay><IppDisplay><IppScreen ID=\"1\"><IppTextBox Default=\"TEXT\" "
        "Key=\"k\"><Text>second</Text></IppTextBox></IppScreen></IppDisplay></IppPhone>");
    EXPECT_EQ(snapshot()["screen"]["text"], "first") << "the wrapper takes one display";
}
