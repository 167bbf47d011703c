// List screens on the emulated phone, driven by keys, against a loopback application server.
#include <gtest/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "PhoneScreens.h"

namespace {

using DisplayAPI::Key;
using nlohmann::json;

std::string option(const std::string& key, const std::string& value, const std::string& selected,
                   const std::string& texts) {
    return "<Option Key=\"" + key + "\" Value=\"" + value + "\" Selected=\"" + selected + "\">" + texts +
           "</Option>";
}

std::string text(const std::string& content, const std::string& attributes = "") {
    return "<OptionText" + attributes + ">" + content + "</OptionText>";
}

class ListScreen : public ::testing::TestWithParam<bool> {
protected:
    static PhoneOptions phoneOptions(const std::string& locale) {
        PhoneOptions options;
        options.applicationName = uniqueApplicationName("Lists-");
        options.model.softKeyBar = GetParam();
        options.locale = locale;
        return options;
    }

    // Serves `document` as the application's first page and waits until a screen shows.
    void start(const std::string& document, const std::string& locale = "en") {
        mPhone = std::make_unique<EmulatedPhone>(phoneOptions(locale));
        mServer.setDocument("/app/start", document);
        // An empty reply installs nothing, so the list stays on screen after a request.
        mServer.setDocument("/app/chosen", "");
        ASSERT_TRUE(mPhone->configuration().setValues(
            loopbackApplication(uniqueApplicationName("Lists-"), std::to_string(mServer.port()), locale)));
        std::string error;
        ASSERT_TRUE(mPhone->loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        mPhone->start();
        ASSERT_TRUE(mServer.waitForRequests(1));
        waitFor([](const json& s) {
            const json& screen = s["screen"];
            // The start-up screen belongs to no element of a document.
            return screen.is_object() && screen["ownerId"] != 0;
        });
    }

    std::string url() const { return "http://127.0.0.1:" + std::to_string(mServer.port()) + "/app/chosen"; }

    json waitFor(const std::function<bool(const json&)>& condition) {
        return waitForScreen(*mPhone, condition);
    }

    json press(Key key, const std::function<bool(const json&)>& condition) {
        mPhone->display().pressKey(key);
        return waitFor(condition);
    }

    // A command of the list widget: on its soft key, or through the widget's own menu (#).
    void chooseListCommand(const std::string& label) {
        json shot = mPhone->display().snapshot();
        if (GetParam()) {
            const auto& keys = shot["softKeys"];
            for (size_t i = 0; i < keys.size(); ++i) {
                if (keys[i] == label) {
                    mPhone->display().pressKey(static_cast<Key>(static_cast<int>(Key::SoftKey1) + i));
                    return;
                }
            }
            FAIL() << "no soft key " << label << " in " << shot.dump();
        }
        shot = press(Key::Hash, [](const json& s) { return s["screen"]["menu"].is_object(); });
        const auto& entries = shot["screen"]["menu"]["entries"];
        for (size_t i = 0; i < entries.size() && entries[i] != label; ++i) {
            mPhone->display().pressKey(Key::Down);
        }
        mPhone->display().pressKey(Key::Ok);
    }

    std::vector<std::vector<std::string>> columns(const json& s) {
        std::vector<std::vector<std::string>> out;
        for (const auto& row : s["screen"]["rows"]) {
            out.push_back(row["columns"].get<std::vector<std::string>>());
        }
        return out;
    }

    std::string lastRequest() { return mServer.requests().back(); }

    ApplicationServer mServer;
    std::unique_ptr<EmulatedPhone> mPhone;
};

TEST_P(ListScreen, PlainListSendsTheFocusedOptionOnOk) {
    start("<IppDisplay><IppScreen ID=\"1\"><IppList Count=\"3\"><Title>Colours</Title><Url>" + url() +
          "</Url>" + option("colour", "red", "FALSE", text("Red")) +
          option("colour", "green", "FALSE", text("Green")) +
          option("colour", "blue", "FALSE", text("Blue")) + "</IppList></IppScreen></IppDisplay>");
    json shot = mPhone->display().snapshot();
    ASSERT_EQ(shot["screen"]["kind"], "list") << shot.dump();
    EXPECT_EQ(shot["screen"]["title"], "Colours");
    EXPECT_EQ(columns(shot), (std::vector<std::vector<std::string>>{{"Red"}, {"Green"}, {"Blue"}}));
    EXPECT_EQ(shot["screen"]["focus"], 0);
    EXPECT_FALSE(shot["screen"]["rows"][0]["arrow"]) << "its own Select alone needs no row menu";

    // Right has no menu to open here; the list must stay usable rather than go blank.
    mPhone->display().pressKey(Key::Right);
    press(Key::Down, [](const json& s) { return s["screen"]["focus"] == 1; });
    mPhone->display().pressKey(Key::Ok);
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(lastRequest(), "/app/chosen?colour=green");
    EXPECT_TRUE(mPhone->display().snapshot()["popup"].is_null());
}

TEST_P(ListScreen, FocusEventCommandSendsTheSelectionWhenTheApplicationComesBack) {
    start("<IppDisplay><IppScreen ID=\"1\" CommandCount=\"1\"><IppList Count=\"2\"><Title>Back "
          "again</Title><Url>" +
          url() + "</Url>" + option("colour", "red", "FALSE", text("Red")) +
          option("colour", "green", "FALSE", text("Green")) +
          "</IppList><IppCommand Type=\"SELECT\" DisplayOn=\"NONE\" Event=\"ONFOCUS\" Key=\"seen\" "
          "Value=\"1\"><Label>Seen</Label></IppCommand></IppScreen></IppDisplay>");
    press(Key::Down, [](const json& s) { return s["screen"]["focus"] == 1; });
    mPhone->lifeCycle("hide");
    mPhone->lifeCycle("show");
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(lastRequest(), "/app/chosen?colour=green&seen=1")
        << "the selection first, then the command's pair";
}

TEST_P(ListScreen, OptionsRowOpensOptionCommandsAndRowMenuSelects) {
    const std::string update =
        "<IppCommand Type=\"UPDATE\" Key=\"mode\" Value=\"fresh\"><Label>Refresh</Label>"
        "</IppCommand>";
    start("<IppDisplay><IppScreen ID=\"1\" CommandCount=\"1\"><IppList Count=\"2\"><Url>" + url() + "</Url>" +
              option("colour", "red", "FALSE", text("Red")) +
              option("colour", "green", "TRUE", text("Green")) +
              option("colour", "blue", "FALSE", text("Blue")) + "</IppList>" + update +
              "</IppScreen></IppDisplay>",
          "de");
    json shot = mPhone->display().snapshot();
    ASSERT_EQ(columns(shot), (std::vector<std::vector<std::string>>{{"Optionen"}, {"Red"}, {"Green"}}))
        << "the translated options row first, then only the first Count options";
    EXPECT_TRUE(shot["screen"]["rows"][0]["grey"]);
    EXPECT_EQ(shot["screen"]["focus"], 2) << "the selected option, one row down";
    EXPECT_TRUE(shot["screen"]["rows"][1]["arrow"]);

    shot = press(Key::Right, [](const json& s) { return popupIs(s, "contextMenu"); });
    ASSERT_EQ(shot["popup"]["entries"], json::array({"Auswählen"})) << shot.dump();
    mPhone->display().pressKey(Key::Ok);
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(lastRequest(), "/app/chosen?colour=green");

    press(Key::Left, [](const json& s) { return s["popup"].is_null(); });
    press(Key::Up, [](const json& s) { return s["screen"]["focus"] == 1; });
    press(Key::Up, [](const json& s) { return s["screen"]["focus"] == 0; });
    shot = press(Key::Ok, [](const json& s) { return popupIs(s, "contextMenu"); });
    ASSERT_EQ(shot["popup"]["entries"], json::array({"Refresh"})) << shot.dump();
    mPhone->display().pressKey(Key::Ok);
    ASSERT_TRUE(mServer.waitForRequests(3));
    EXPECT_EQ(lastRequest(), "/app/chosen?mode=fresh") << "the options row itself carries no option";
}

TEST_P(ListScreen, MultipleListSendsTickedAndUntickedOptions) {
    start("<IppDisplay><IppScreen ID=\"1\" CommandCount=\"1\"><IppList Type=\"MULTIPLE\" Count=\"3\"><Url>" +
          url() + "</Url>" + option("x", "1", "TRUE", text("Ex")) + option("y", "2", "FALSE", text("Why")) +
          option("z", "3", "FALSE", text("Zed")) +
          "</IppList><IppCommand Type=\"SELECT\" Key=\"act\" Value=\"go\"><Label>Send</Label></IppCommand>"
          "</IppScreen></IppDisplay>");
    json shot = mPhone->display().snapshot();
    ASSERT_EQ(shot["screen"]["kind"], "multipleList") << shot.dump();
    EXPECT_TRUE(shot["screen"]["rows"][0]["ticked"]);
    EXPECT_FALSE(shot["screen"]["rows"][1]["ticked"]);
    EXPECT_EQ(shot["screen"]["focus"], 0);

    press(Key::Down, [](const json& s) { return s["screen"]["focus"] == 1; });
    press(Key::Down, [](const json& s) { return s["screen"]["focus"] == 2; });
    press(Key::Ok, [](const json& s) { return s["screen"]["rows"][2]["ticked"] == true; });
    chooseListCommand("Send");
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(lastRequest(), "/app/chosen?act=go&x=1&y=not_2&z=3");
}

TEST_P(ListScreen, BackOffersThePopupConfirmAndReturnsToTheKeptFocus) {
    const std::string first =
        "<IppScreen ID=\"1\" CommandCount=\"1\"><IppList Type=\"EXCLUSIVE\" "
        "Count=\"3\"><Title>First</Title>" +
        option("a", "1", "FALSE", text("Alpha")) + option("b", "2", "TRUE", text("Beta")) +
        option("c", "3", "TRUE", text("Gamma")) +
        "</IppList><IppCommand Type=\"SCREEN\"><Label>Next</Label><ScreenID>2</ScreenID></IppCommand>"
        "</IppScreen>";
    const std::string second =
        "<IppScreen ID=\"2\" CommandCount=\"2\"><IppList Count=\"1\"><Title>Second</Title>" +
        option("c", "3", "FALSE", text("Gamma")) +
        "</IppList><IppCommand Type=\"BACK\"><Label>Back</Label></IppCommand>"
        "<IppCommand Type=\"EXIT\"><Label>Quit</Label></IppCommand></IppScreen>";
    start("<IppDisplay InitialScreen=\"1\">" + first + second + "</IppDisplay>");
    json shot = mPhone->display().snapshot();
    ASSERT_EQ(shot["screen"]["kind"], "exclusiveList") << shot.dump();
    EXPECT_EQ(shot["screen"]["focus"], 1) << "the first of two selected options is the choice";

    press(Key::Up, [](const json& s) { return s["screen"]["focus"] == 0; });
    chooseListCommand("Next");
    shot = waitFor([](const json& s) { return s["screen"]["title"] == "Second"; });
    ASSERT_EQ(shot["screen"]["title"], "Second") << shot.dump();

    shot = press(Key::Back, [](const json& s) { return popupIs(s, "popupConfirm"); });
    ASSERT_EQ(shot["popup"]["entries"], json::array({"Back", "Quit"})) << shot.dump();
    shot = press(Key::Back, [](const json& s) { return s["popup"].is_null(); });
    EXPECT_EQ(shot["screen"]["title"], "Second") << "Back again only closes the popup";

    press(Key::Back, [](const json& s) { return popupIs(s, "popupConfirm"); });
    shot = press(Key::Ok, [](const json& s) { return s["screen"]["title"] == "First"; });
    ASSERT_EQ(shot["screen"]["title"], "First") << shot.dump();
    EXPECT_EQ(shot["screen"]["focus"], 0) << "the focus the user left survives the hiding";
    EXPECT_EQ(mServer.requests().size(), 1u) << "moving between cached screens asks the server nothing";
}

TEST_P(ListScreen, ThreeColumnsShowUpToThreeTextsAndGreyRows) {
    start("<IppDisplay><IppScreen ID=\"1\"><IppList Columns=\"3\" Count=\"3\"><Url>" + url() + "</Url>" +
          option("k", "1", "FALSE", text("A")) + option("k", "2", "FALSE", text("A") + text("B")) +
          option("k", "3", "FALSE", text("A") + text("B", " State=\"GRAY\"") + text("C")) +
          "</IppList></IppScreen></IppDisplay>");
    json shot = mPhone->display().snapshot();
    ASSERT_EQ(columns(shot), (std::vector<std::vector<std::string>>{{"A"}, {"A", "B"}, {"A", "B", "C"}}))
        << shot.dump();
    EXPECT_FALSE(shot["screen"]["rows"][1]["grey"]);
    EXPECT_TRUE(shot["screen"]["rows"][2]["grey"]);
}

TEST_P(ListScreen, ListWithoutCountIsEmptyAndOkSendsNoOption) {
    start("<IppDisplay><IppScreen ID=\"1\"><IppList><Url>" + url() + "</Url>" +
          option("k", "1", "TRUE", text("One")) + option("k", "2", "FALSE", text("Two")) +
          "</IppList></IppScreen></IppDisplay>");
    json shot = mPhone->display().snapshot();
    ASSERT_EQ(shot["screen"]["kind"], "list") << shot.dump();
    EXPECT_TRUE(shot["screen"]["rows"].empty());
    mPhone->display().pressKey(Key::Ok);
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(lastRequest(), "/app/chosen");
}

INSTANTIATE_TEST_SUITE_P(BothModels, ListScreen, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return info.param ? "SoftKeys" : "NoSoftKeys";
                         });

} // namespace
