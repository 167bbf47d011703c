// Form screens on the emulated phone, driven by keys and typed text, against a loopback server.
#include <gtest/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "PhoneScreens.h"

namespace {

using DisplayAPI::Key;
using nlohmann::json;

std::string field(const std::string& key, const std::string& label, const std::string& attributes = "",
                  const std::string& children = "") {
    return "<IppTextField Key=\"" + key + "\"" + attributes + "><Label>" + label + "</Label>" + children +
           "</IppTextField>";
}

std::string command(const std::string& type, const std::string& label, const std::string& attributes = "") {
    return "<IppCommand Type=\"" + type + "\"" + attributes + "><Label>" + label + "</Label></IppCommand>";
}

class FormScreen : public ::testing::TestWithParam<bool> {
protected:
    void start(const std::string& form, const std::string& commands, int commandCount) {
        PhoneOptions options;
        options.applicationName = uniqueApplicationName("Forms-");
        options.model.softKeyBar = GetParam();
        options.locale = "en";
        mPhone = std::make_unique<EmulatedPhone>(options);
        mServer.setDocument("/app/start", "<IppDisplay><IppScreen ID=\"1\" CommandCount=\"" +
                                              std::to_string(commandCount) + "\">" + form + commands +
                                              "</IppScreen></IppDisplay>");
        // An empty reply installs nothing, so the form stays on screen after a request.
        mServer.setDocument("/app/sent", "");
        ASSERT_TRUE(mPhone->configuration().setValues(
            loopbackApplication(uniqueApplicationName("Forms-"), std::to_string(mServer.port()), "en")));
        std::string error;
        ASSERT_TRUE(mPhone->loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        mPhone->start();
        ASSERT_TRUE(mServer.waitForRequests(1));
        waitFor([](const json& s) { return s["screen"].is_object() && s["screen"]["kind"] == "form"; });
    }

    std::string url() const { return "http://127.0.0.1:" + std::to_string(mServer.port()) + "/app/sent"; }

    json waitFor(const std::function<bool(const json&)>& condition) {
        return waitForScreen(*mPhone, condition);
    }

    json press(Key key, const std::function<bool(const json&)>& condition) {
        mPhone->display().pressKey(key);
        return waitFor(condition);
    }

    static std::function<bool(const json&)> focusIs(int index) {
        return [index](const json& s) { return s["screen"]["focus"] == index; };
    }

    // Ok starts an edit, the text goes in, Ok finishes it and the element hears of it.
    void typeInto(int index, const std::string& text) {
        const int focus = mPhone->display().snapshot()["screen"]["focus"];
        for (int i = focus; i < index; ++i) {
            press(Key::Down, focusIs(i + 1));
        }
        for (int i = focus; i > index; --i) {
            press(Key::Up, focusIs(i - 1));
        }
        mPhone->display().pressKey(Key::Ok);
        mPhone->display().typeText(text);
        mPhone->display().pressKey(Key::Ok);
        waitFor([index](const json& s) { return s["screen"]["items"][index]["editing"] == false; });
    }

    // Focuses the options field (the first item) and chooses the entry at `entry`.
    void submit(int entry) {
        const int focus = mPhone->display().snapshot()["screen"]["focus"];
        for (int i = focus; i > 0; --i) {
            press(Key::Up, focusIs(i - 1));
        }
        for (int i = 0; i < entry; ++i) {
            press(Key::Right, [i](const json& s) { return s["screen"]["items"][0]["selected"] == i + 1; });
        }
        mPhone->display().pressKey(Key::Ok);
    }

    std::string lastRequest() { return mServer.requests().back(); }

    ApplicationServer mServer;
    std::unique_ptr<EmulatedPhone> mPhone;
};

TEST_P(FormScreen, TypedTextOfBothFieldsReachesTheServer) {
    start("<IppForm ItemCount=\"2\" Proportion=\"60_40\"><Title>Sign up</Title><Url>" + url() + "</Url>" +
              field("name", "Name") + field("age", "Age", " Constraint=\"NUMERIC\" MaxSize=\"3\"") +
              field("spare", "Spare") + "</IppForm>",
          command("SELECT", "Send", " Priority=\"5\" Key=\"act\" Value=\"send\"") +
              command("UPDATE", "Refresh", " Priority=\"2\""),
          2);
    json shot = mPhone->display().snapshot();
    ASSERT_EQ(shot["screen"]["title"], "Sign up") << shot.dump();
    EXPECT_EQ(shot["screen"]["proportion"], 2);
    const json& items = shot["screen"]["items"];
    ASSERT_EQ(items.size(), 3u) << "the options field and only the first ItemCount fields";
    EXPECT_EQ(items[0]["kind"], "selectionField");
    EXPECT_EQ(items[0]["entries"], json({"Refresh", "Send"})) << "ascending priority";
    EXPECT_EQ(shot["screen"]["focus"], 0);
    EXPECT_EQ(items[1]["label"], "Name");
    EXPECT_EQ(items[2]["fieldType"], 3);
    EXPECT_EQ(items[2]["maxLength"], 3);
    if (GetParam()) {
        EXPECT_EQ(shot["softKeys"][0], "Refresh") << shot.dump();
    }

    typeInto(1, "ann");
    typeInto(2, "4x2");
    // Without a popup command, Back on a form does nothing.
    mPhone->display().pressKey(Key::Back);
    shot = waitFor([](const json&) { return true; });
    EXPECT_TRUE(shot["popup"].is_null());
    EXPECT_EQ(shot["screen"]["kind"], "form");

    submit(1);
    ASSERT_TRUE(mServer.waitForRequests(2));
    // The field beyond ItemCount is not shown, yet its widget exists and its pair is sent.
    EXPECT_EQ(lastRequest(), "/app/sent?act=send&age=42&name=ann&spare=");
}

TEST_P(FormScreen, LettersInANumericFieldRaiseTheAlertAndCancelRestores) {
    start("<IppForm ItemCount=\"1\"><Url>" + url() + "</Url>" +
              field("pin", "PIN", " Constraint=\"NUMERIC\" Default=\"TEXT\"", "<Text>12a</Text>") +
              "</IppForm>",
          command("SELECT", "Send"), 1);
    typeInto(1, "3");
    json shot = waitFor([](const json& s) { return popupIs(s, "alert"); });
    ASSERT_TRUE(popupIs(shot, "alert")) << shot.dump();
    EXPECT_EQ(shot["screen"]["items"][1]["value"], "12a3");
    shot = press(Key::Back, [](const json& s) { return s["popup"].is_null(); });
    ASSERT_TRUE(shot["popup"].is_null()) << shot.dump();
    EXPECT_EQ(shot["screen"]["items"][1]["value"], "12a") << "rolled back to the committed text";

    submit(0);
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(lastRequest(), "/app/sent?pin=12a");
}

TEST_P(FormScreen, DifferingPasswordsAreRefusedAndEqualOnesSendOnlyThePassword) {
    start("<IppForm ItemCount=\"3\"><Url>" + url() + "</Url>" + field("user", "User") +
              field("pw", "Password", " Constraint=\"PASSWORD\"") +
              field("pw2", "Again", " Constraint=\"VALIDATE\"") + "</IppForm>",
          command("SELECT", "Send"), 1);
    typeInto(1, "bob");
    typeInto(2, "abc");
    typeInto(3, "abd");
    EXPECT_EQ(mPhone->display().snapshot()["screen"]["items"][3]["fieldType"], 6);
    submit(0);
    json shot = waitFor([](const json& s) { return popupIs(s, "alert"); });
    ASSERT_TRUE(popupIs(shot, "alert")) << shot.dump();
    EXPECT_EQ(shot["popup"]["title"], "Password validation failure!");
    EXPECT_EQ(shot["popup"]["text"], "Passwords entered don't match.");
    EXPECT_EQ(mServer.requests().size(), 1u);

    press(Key::Back, [](const json& s) { return s["popup"].is_null(); });
    press(Key::Down, focusIs(1));
    press(Key::Down, focusIs(2));
    press(Key::Down, focusIs(3));
    mPhone->display().pressKey(Key::Ok);
    mPhone->display().pressKey(Key::Left);
    mPhone->display().typeText("c");
    mPhone->display().pressKey(Key::Ok);
    submit(0);
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(lastRequest(), "/app/sent?pw=abc&user=bob");
}

TEST_P(FormScreen, BackOpensThePopupConfirmWithBackAndExit) {
    start("<IppForm ItemCount=\"1\"><Url>" + url() + "</Url>" + field("a", "A") + "</IppForm>",
          command("BACK", "Back", " Priority=\"1\"") + command("EXIT", "Leave", " Priority=\"2\""), 2);
    json shot = mPhone->display().snapshot();
    EXPECT_EQ(shot["screen"]["items"][0]["entries"], json({"Back"})) << "BACK is also an option";
    shot = press(Key::Down, focusIs(1));
    shot = press(Key::Back, [](const json& s) { return popupIs(s, "popupConfirm"); });
    ASSERT_TRUE(popupIs(shot, "popupConfirm")) << shot.dump();
    EXPECT_EQ(shot["popup"]["entries"], json({"Back", "Leave"})) << shot.dump();
}

TEST_P(FormScreen, OnlyABackCommandGoesStraightToThePreviousScreen) {
    start("<IppForm ItemCount=\"1\"><Title>First</Title><Url>" + url() + "</Url>" + field("a", "A") +
              "</IppForm>",
          command("SELECT", "Next"), 1);
    mServer.setDocument("/app/sent", "<IppDisplay><IppScreen ID=\"2\" CommandCount=\"1\"><IppForm "
                                     "ItemCount=\"1\"><Title>Second</Title>" +
                                         field("b", "B") + "</IppForm>" + command("BACK", "Back") +
                                         "</IppScreen></IppDisplay>");
    submit(0);
    json shot = waitFor([](const json& s) { return s["screen"]["title"] == "Second"; });
    ASSERT_EQ(shot["screen"]["title"], "Second") << shot.dump();
    press(Key::Down, focusIs(1));
    shot = press(Key::Back, [](const json& s) { return s["screen"]["title"] == "First"; });
    EXPECT_EQ(shot["screen"]["title"], "First") << shot.dump();
    EXPECT_TRUE(shot["popup"].is_null()) << "no popup confirm for a lone BACK";
}

TEST_P(FormScreen, SelectionItemMenuSendsItsCommandWithTheFields) {
    start("<IppForm ItemCount=\"2\"><Url>" + url() + "</Url>" + field("name", "Name") +
              "<IppItem CommandCount=\"1\">" +
              field("city", "City", " Default=\"TEXT\"", "<Text>Oslo</Text>") +
              command("SELECT", "Pick", " DisplayOn=\"LISTITEM\" Key=\"k\" Value=\"v\"") +
              command("SELECT", "Hidden", " DisplayOn=\"LISTITEM\"") + "</IppItem></IppForm>",
          "", 0);
    json shot = mPhone->display().snapshot();
    ASSERT_EQ(shot["screen"]["items"].size(), 2u) << "no commands, so no options field: " << shot.dump();
    EXPECT_TRUE(shot["screen"]["items"][1]["arrow"]);
    typeInto(0, "eve");
    press(Key::Down, focusIs(1));
    shot = press(Key::Ok, [](const json& s) { return popupIs(s, "contextMenu"); });
    ASSERT_TRUE(popupIs(shot, "contextMenu")) << shot.dump();
    EXPECT_EQ(shot["popup"]["entries"], json({"Pick"})) << "only CommandCount commands";
    mPhone->display().pressKey(Key::Ok);
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(lastRequest(), "/app/sent?city=Oslo&k=v&name=eve");
    shot = waitFor([](const json& s) { return s["popup"].is_null(); });
    EXPECT_TRUE(shot["popup"].is_null()) << shot.dump();
}

TEST_P(FormScreen, OkOnASelectionItemRunsItsDefaultCommandAndWithoutOneOpensTheMenu) {
    start(
        "<IppForm ItemCount=\"2\"><Url>" + url() + "</Url>" + "<IppItem CommandCount=\"2\">" +
            field("city", "City", " Default=\"TEXT\"", "<Text>Oslo</Text>") +
            command("SELECT", "Other", " DisplayOn=\"LISTITEM\" Key=\"k\" Value=\"other\"") +
            command("SELECT", "Usual", " DisplayOn=\"LISTITEM\" Default=\"YES\" Key=\"k\" Value=\"usual\"") +
            "</IppItem><IppItem CommandCount=\"1\">" +
            field("town", "Town", " Default=\"TEXT\"", "<Text>Rome</Text>") +
            command("SELECT", "Go", " DisplayOn=\"LISTITEM\" Key=\"t\" Value=\"go\"") +
            "</IppItem></IppForm>",
        command("SELECT", "Send", " Key=\"o\" Value=\"opt\""), 1);
    // The options field still answers OK with its chosen command.
    mPhone->display().pressKey(Key::Ok);
    ASSERT_TRUE(mServer.waitForRequests(2));
    EXPECT_EQ(lastRequest(), "/app/sent?city=Oslo&o=opt&town=Rome");

    press(Key::Down, focusIs(1));
    mPhone->display().pressKey(Key::Ok);
    ASSERT_TRUE(mServer.waitForRequests(3)) << "the default command fires at once";
    EXPECT_EQ(lastRequest(), "/app/sent?city=Oslo&k=usual&town=Rome");
    EXPECT_FALSE(popupIs(mPhone->display().snapshot(), "contextMenu"));

    press(Key::Down, focusIs(2));
    json shot = press(Key::Ok, [](const json& s) { return popupIs(s, "contextMenu"); });
    ASSERT_TRUE(popupIs(shot, "contextMenu")) << "no default command: OK opens the menu " << shot.dump();
    EXPECT_EQ(shot["popup"]["entries"], json({"Go"}));
    EXPECT_EQ(mServer.requests().size(), 3u);
}

INSTANTIATE_TEST_SUITE_P(BothModels, FormScreen, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return info.param ? std::string("SoftKeys") : std::string("NoSoftKeys");
                         });

} // namespace
