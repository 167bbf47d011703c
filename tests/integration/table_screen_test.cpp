// Table screens on the emulated phone: rows and header drawn, focus moved with the keys, a row's
// pair and commands sent, menus and Back, against a loopback application server.
#include <gtest/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "PhoneScreens.h"
#include "TestPictures.h"
#include "TextRenderer.h"

namespace {

using DisplayAPI::Key;
using nlohmann::json;

std::string cell(const std::string& text, const std::string& attributes = "",
                 const std::string& secondLine = "") {
    return "<Cell" + attributes + "><CellLine><CellText>" + text + "</CellText></CellLine>" + secondLine +
           "</Cell>";
}

std::string contact(const std::string& name, const std::string& number, const std::string& extra = "") {
    return "<Row Key=\"contact\" Value=\"" + name + "\"" + extra + ">" + cell(name, " Width=\"70\"") +
           cell(number, " Width=\"30\"");
}

std::string command(const std::string& type, const std::string& label, const std::string& attributes = "") {
    return "<IppCommand Type=\"" + type + "\"" + attributes + "><Label>" + label + "</Label></IppCommand>";
}

class TableScreen : public ::testing::TestWithParam<bool> {
protected:
    void start(const std::string& document, const std::function<void(EmulatedPhone&)>& prepare = {}) {
        PhoneOptions options;
        options.applicationName = uniqueApplicationName("Tables-");
        options.model.softKeyBar = GetParam();
        mPhone = std::make_unique<EmulatedPhone>(options);
        if (prepare) {
            prepare(*mPhone);
        }
        mServer.setDocument("/app/start", document);
        mServer.setDocument("/app/sent", "");
        ASSERT_TRUE(mPhone->configuration().setValues(
            loopbackApplication(uniqueApplicationName("Tables-"), std::to_string(mServer.port()), "en")));
        std::string error;
        ASSERT_TRUE(mPhone->loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        mPhone->start();
        ASSERT_TRUE(mServer.waitForRequests(1));
        waitFor([](const json& s) { return s["screen"].is_object() && s["screen"]["kind"] == "table"; });
    }

    std::string url(const std::string& path = "sent") const {
        return "http://127.0.0.1:" + std::to_string(mServer.port()) + "/app/" + path;
    }

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

    static std::string text(const json& shot, int row, int line, int column) {
        return shot["screen"]["rows"][row]["lines"][line][column]["text"];
    }

    std::string nextRequest(size_t before) {
        EXPECT_TRUE(mServer.waitForRequests(before + 1));
        return mServer.requests().back();
    }

    ApplicationServer mServer;
    std::unique_ptr<EmulatedPhone> mPhone;
};

std::string contactsTable(const std::string& url, const std::string& screenCommands, int commandCount) {
    return "<IppDisplay><IppScreen ID=\"1\" CommandCount=\"" + std::to_string(commandCount) +
           "\"><IppTable ColumnCount=\"2\"><Url>" + url + "</Url><Header ColumnCount=\"2\">" +
           cell("Name", " Width=\"70\"") + cell("Phone", " Width=\"30\"") + "</Header>" +
           contact("ann", "3101") + "</Row>" + contact("bob", "3102") + "</Row>" +
           "<Row Key=\"contact\" Value=\"cy\" LineCount=\"2\">" +
           cell("cy", " Width=\"70\"", "<CellLine State=\"GRAY\"><CellText>away</CellText></CellLine>") +
           cell("3103") + "</Row>" + contact("dan", "3104", " CommandCount=\"1\"") +
           command("SELECT", "Call", " DisplayOn=\"LISTITEM\" Key=\"act\" Value=\"call\" Priority=\"1\"") +
           command("SELECT", "Mail", " DisplayOn=\"LISTITEM\" Key=\"act\" Value=\"mail\" Priority=\"2\"") +
           "</Row></IppTable>" + screenCommands + "</IppScreen></IppDisplay>";
}

TEST_P(TableScreen, ContactsAreDrawnAndOkSendsTheFocusedRowsPair) {
    start(contactsTable(url(), "", 0));
    json shot = mPhone->display().snapshot();
    const json& header = shot["screen"]["header"];
    EXPECT_EQ(header["lines"][0][0]["text"], "Name") << shot.dump();
    EXPECT_EQ(header["lines"][0][1]["text"], "Phone");
    EXPECT_EQ(header["widths"], json({70, 30}));
    ASSERT_EQ(shot["screen"]["rows"].size(), 4u);
    EXPECT_EQ(text(shot, 1, 0, 0), "bob");
    EXPECT_EQ(text(shot, 1, 0, 1), "3102");
    EXPECT_EQ(shot["screen"]["rows"][0]["widths"], json({70, 30})) << "the first row's widths for every row";
    EXPECT_EQ(shot["screen"]["rows"][2]["widths"], json({70, 30}));
    EXPECT_EQ(text(shot, 2, 1, 0), "away");
    EXPECT_EQ(shot["screen"]["rows"][2]["lines"][1][0]["grey"], true);
    EXPECT_EQ(shot["screen"]["rows"][2]["lines"][0][0]["grey"], false);
    EXPECT_TRUE(shot["screen"]["reserveArrow"]) << "a row has commands";
    EXPECT_EQ(shot["screen"]["rows"][3]["arrow"], !GetParam()) << "the arrow only without soft keys";
    EXPECT_EQ(shot["screen"]["focus"], 0);
    // The text view lines the columns up under the header.
    const std::string expected = "  Name        | Phone\n"
                                 "  -------------------\n"
                                 "> ann         | 3101\n"
                                 "  bob         | 3102\n"
                                 "  cy          | 3103\n"
                                 "  away (grey)\n"
                                 "  dan         | 3104";
    EXPECT_NE(TextRenderer::render(shot).find(expected), std::string::npos) << TextRenderer::render(shot);

    press(Key::Down, focusIs(1));
    press(Key::Down, focusIs(2));
    mPhone->display().pressKey(Key::Ok);
    EXPECT_EQ(nextRequest(1), "/app/sent?contact=cy");

    // A row with commands opens its context menu instead; its first CommandCount commands show.
    press(Key::Down, focusIs(3));
    shot = press(Key::Ok, [](const json& s) { return popupIs(s, "contextMenu"); });
    ASSERT_TRUE(popupIs(shot, "contextMenu")) << shot.dump();
    EXPECT_EQ(shot["popup"]["entries"], json({"Call"}));
    shot = press(Key::Back, [](const json& s) { return s["popup"].is_null(); });
    EXPECT_TRUE(shot["popup"].is_null()) << "Back closes the menu: " << shot.dump();
    EXPECT_EQ(mServer.requests().size(), 2u);

    press(Key::Ok, [](const json& s) { return popupIs(s, "contextMenu"); });
    mPhone->display().pressKey(Key::Ok);
    EXPECT_EQ(nextRequest(2), "/app/sent?act=call&contact=dan");
    shot = waitFor([](const json& s) { return s["popup"].is_null(); });
    EXPECT_TRUE(shot["popup"].is_null()) << shot.dump();
    EXPECT_EQ(shot["screen"]["focus"], 3);
}

TEST_P(TableScreen, BackAsksWithThePopupConfirmAndItsBackEntryReturns) {
    // The first table leads to the second through "Next", a command of every row.
    start(contactsTable(url("second"), command("UPDATE", "Next", " DisplayOn=\"BOTH\""), 1));
    mServer.setDocument("/app/second",
                        "<IppDisplay><IppScreen ID=\"2\" CommandCount=\"2\"><IppTable><Url>" + url() +
                            "</Url><Header>" + cell("Second") + "</Header><Row Key=\"k\">" + cell("only") +
                            "</Row></IppTable>" + command("BACK", "Back", " Priority=\"1\"") +
                            command("EXIT", "Leave", " Priority=\"2\"") + "</IppScreen></IppDisplay>");
    press(Key::Down, focusIs(1));
    json shot = press(Key::Ok, [](const json& s) { return popupIs(s, "contextMenu"); });
    ASSERT_TRUE(popupIs(shot, "contextMenu")) << shot.dump();
    EXPECT_EQ(shot["popup"]["entries"], json({"Next"}));
    mPhone->display().pressKey(Key::Ok);
    const auto onSecond = [](const json& s) {
        return s["screen"]["kind"] == "table" && s["screen"]["header"]["lines"][0][0]["text"] == "Second";
    };
    shot = waitFor(onSecond);
    ASSERT_TRUE(onSecond(shot)) << shot.dump();
    EXPECT_EQ(mServer.requests().back(), "/app/second") << "the row's pair goes only with Select";

    shot = press(Key::Back, [](const json& s) { return popupIs(s, "popupConfirm"); });
    ASSERT_TRUE(popupIs(shot, "popupConfirm")) << shot.dump();
    EXPECT_EQ(shot["popup"]["entries"], json({"Back", "Leave"}));
    shot = press(Key::Back, [](const json& s) { return s["popup"].is_null(); });
    ASSERT_TRUE(shot["popup"].is_null()) << "Back while it is open closes it: " << shot.dump();
    EXPECT_TRUE(onSecond(shot));

    press(Key::Back, [](const json& s) { return popupIs(s, "popupConfirm"); });
    shot =
        press(Key::Ok, [](const json& s) { return s["screen"]["header"]["lines"][0][0]["text"] == "Name"; });
    EXPECT_EQ(shot["screen"]["header"]["lines"][0][0]["text"], "Name") << shot.dump();
    EXPECT_TRUE(shot["popup"].is_null());
    EXPECT_EQ(shot["screen"]["focus"], 1) << "the table keeps its focused row when shown again";
}

TEST_P(TableScreen, ALoneBackCommandGoesStraightBack) {
    start(contactsTable(url("second"), command("UPDATE", "Next"), 1));
    mServer.setDocument("/app/second",
                        "<IppDisplay><IppScreen ID=\"2\" CommandCount=\"1\"><IppTable><Header>" +
                            cell("Second") + "</Header></IppTable>" + command("BACK", "Back") +
                            "</IppScreen></IppDisplay>");
    press(Key::Down, focusIs(1));
    press(Key::Up, focusIs(0));
    press(Key::Up, focusIs(-1));
    press(Key::Ok, [](const json& s) { return popupIs(s, "contextMenu"); });
    mPhone->display().pressKey(Key::Ok);
    waitFor([](const json& s) { return s["screen"]["header"]["lines"][0][0]["text"] == "Second"; });
    const json shot = press(
        Key::Back, [](const json& s) { return s["screen"]["header"]["lines"][0][0]["text"] == "Name"; });
    EXPECT_EQ(shot["screen"]["header"]["lines"][0][0]["text"], "Name") << shot.dump();
    EXPECT_TRUE(shot["popup"].is_null());
}

TEST_P(TableScreen, CellsShowTheirPicturesAndPhoneNumbers) {
    mServer.setReply("/app/face.png", TestPictures::png(12, 10), "image/png");
    mServer.setReply("/app/flag.png", TestPictures::png(8, 6), "image/png");
    const std::string picture = "<Image>" + url("face.png") + "</Image>";
    start("<IppDisplay><IppScreen ID=\"1\"><IppTable ColumnCount=\"2\"><Url>" + url() +
              "</Url><Header ColumnCount=\"2\"><Cell><CellLine><CellText>Who</CellText><Image>" +
              url("flag.png") + "</Image></CellLine></Cell>" + cell("Note") +
              "</Header><Row Key=\"c\" Value=\"young\"><Cell><CellLine><CellText>0123"
              "<IppPhoneNumber NumberType=\"NAME\"/></CellText>" +
              picture + "<Image>" + url("missing.png") + "</Image>" + picture +
              "</CellLine></Cell><Cell><CellLine><CellText>0999<IppPhoneNumber NumberType=\"NAME\"><AltText>"
              "Unknown</AltText></IppPhoneNumber></CellText></CellLine></Cell></Row></IppTable></IppScreen>"
              "</IppDisplay>",
          [](EmulatedPhone& phone) {
              // Contacts are looked up on a phone whose model has number-type icons.
              ASSERT_TRUE(phone.configuration().setValues({{"related-device-type", "Veltria 80"}}));
              phone.directory().addEntry({"0123", "Xaver", "Young", "", DirectoryRecord::Mobile});
          });
    // The pictures arrive in the background; the one the server does not have is left out.
    const json shot = waitFor([](const json& s) {
        return s["screen"]["rows"][0]["lines"][0][0]["images"].size() == 3 &&
               !s["screen"]["rows"][0]["lines"][0][0]["images"][2].is_null() &&
               s["screen"]["header"]["lines"][0][0]["images"].size() == 1;
    });
    const json& images = shot["screen"]["rows"][0]["lines"][0][0]["images"];
    ASSERT_EQ(images.size(), 3u) << shot.dump();
    EXPECT_EQ(images[0]["width"], 12);
    EXPECT_EQ(images[0]["height"], 10);
    EXPECT_TRUE(images[1].is_null()) << "the missing picture keeps its place empty";
    EXPECT_EQ(images[2]["width"], 12);
    EXPECT_EQ(shot["screen"]["header"]["lines"][0][0]["images"][0]["width"], 8);
    EXPECT_EQ(shot["screen"]["header"]["lines"][0][0]["text"], "Who");
    EXPECT_EQ(text(shot, 0, 0, 0), "Young, Xaver") << "the contact's name for a known number";
    EXPECT_EQ(text(shot, 0, 0, 1), "Unknown") << "the alternative text for an unknown one";

    const size_t before = mServer.requests().size();
    EXPECT_EQ(before, 5u) << "the start document and the four pictures";
    mPhone->display().pressKey(Key::Ok);
    EXPECT_EQ(nextRequest(before), "/app/sent?c=young");
}

TEST_P(TableScreen, OversizedAndBadTablesFallBackWithoutHarm) {
    std::string wide;
    for (int i = 0; i < 101; ++i) {
        wide += cell("c" + std::to_string(i));
    }
    start(
        "<IppDisplay><IppScreen ID=\"1\"><IppTable ColumnCount=\"101\"><Url>" + url() +
        "</Url><Header LineCount=\"3\" ColumnCount=\"101\">" + cell("h", " Width=\"x\"") +
        "</Header><Header>" + cell("second header") +
        "</Header><Row CommandCount=\"-2\"><Cell Width=\"150\"><CellLine><CellText>1</CellText></CellLine>"
        "<CellLine><CellText>2</CellText></CellLine><CellLine><CellText>3</CellText></CellLine></Cell></Row>"
        "<Row Key=\"wide\" LineCount=\"0\">" +
        wide + "</Row></IppTable></IppScreen></IppDisplay>");
    json shot = mPhone->display().snapshot();
    const json& header = shot["screen"]["header"];
    ASSERT_EQ(header["lines"].size(), 1u) << "LineCount 3 is 1: " << shot.dump();
    EXPECT_EQ(header["lines"][0].size(), 1u) << "ColumnCount 101 is 1";
    EXPECT_EQ(header["lines"][0][0]["text"], "h") << "the second header is refused";
    EXPECT_EQ(header["widths"], json({100})) << "a bad width is 100";
    ASSERT_EQ(shot["screen"]["rows"].size(), 2u);
    const json& wideRow = shot["screen"]["rows"][1]["lines"][0];
    EXPECT_EQ(wideRow[99]["text"], "c99");
    EXPECT_EQ(wideRow[100]["text"], "") << "the 101st cell is refused";
    EXPECT_EQ(shot["screen"]["rows"][1]["widths"], json::array()) << "the first row's 150 is never applied";
    EXPECT_EQ(shot["screen"]["rows"][0]["lines"].size(), 1u);
    EXPECT_EQ(text(shot, 0, 0, 0), "1") << "a cell's third line is refused";

    // With neither Key nor Value the row sends "null" and the empty text.
    mPhone->display().pressKey(Key::Ok);
    EXPECT_EQ(nextRequest(1), "/app/sent?null=");
}

INSTANTIATE_TEST_SUITE_P(BothModels, TableScreen, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return info.param ? std::string("SoftKeys") : std::string("NoSoftKeys");
                         });

} // namespace
