// Choice groups, buttons, gauges, the player, simple items and tickers on the emulated phone,
// driven by keys against a loopback application server.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <nlohmann/json.hpp>
#include <thread>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "PhoneScreens.h"

namespace {

using DisplayAPI::Key;
using nlohmann::json;

std::string option(const std::string& key, const std::string& value, const std::string& text,
                   bool selected = false) {
    return "<Option Key=\"" + key + "\" Value=\"" + value + "\"" + (selected ? " Selected=\"TRUE\"" : "") +
           "><OptionText>" + text + "</OptionText></Option>";
}

std::string sendCommand() {
    return "<IppCommand Type=\"SELECT\"><Label>Send</Label></IppCommand>";
}

class ItemScreen : public ::testing::Test {
protected:
    // Serves `screen` (the inside of an IppScreen) as the first page and waits until it shows.
    void start(const std::string& screen, const std::string& screenAttributes = "") {
        PhoneOptions options;
        options.applicationName = uniqueApplicationName("Items-");
        options.model.softKeyBar = false;
        options.locale = "en";
        mPhone = std::make_unique<EmulatedPhone>(options);
        mServer.setDocument("/app/start", "<IppDisplay><IppScreen ID=\"1\"" + screenAttributes + ">" +
                                              screen + "</IppScreen></IppDisplay>");
        // An empty reply installs nothing, so the screen stays after a request.
        mServer.setDocument("/app/sent", "");
        ASSERT_TRUE(mPhone->configuration().setValues(
            loopbackApplication(uniqueApplicationName("Items-"), std::to_string(mServer.port()), "en")));
        std::string error;
        ASSERT_TRUE(mPhone->loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        mPhone->start();
        ASSERT_TRUE(mServer.waitForRequests(1));
        waitFor([](const json& s) {
            return (s["screen"].is_object() && s["screen"]["ownerId"] != 0) || popupIs(s, "player");
        });
    }

    std::string url() const {
        return "<Url>http://127.0.0.1:" + std::to_string(mServer.port()) + "/app/sent</Url>";
    }

    json waitFor(const std::function<bool(const json&)>& condition, int tenths = 500) {
        json shot;
        for (int i = 0; i < tenths / 50 + 1; ++i) {
            shot = waitForScreen(*mPhone, condition);
            if (condition(shot)) {
                break;
            }
        }
        return shot;
    }

    json press(Key key, const std::function<bool(const json&)>& condition) {
        mPhone->display().pressKey(key);
        return waitFor(condition);
    }

    // Presses `key` (at most 20 times) until `condition` holds.
    json pressUntil(Key key, const std::function<bool(const json&)>& condition) {
        json shot = mPhone->display().snapshot();
        for (int i = 0; i < 20 && !condition(shot); ++i) {
            const long revision = shot["revision"];
            mPhone->display().pressKey(key);
            shot = waitFor([&](const json& s) { return s["revision"] != revision || condition(s); });
        }
        return shot;
    }

    static std::function<bool(const json&)> focusAt(int index, int row = -1) {
        return [index, row](const json& s) {
            return s["screen"]["focus"] == index && (row < 0 || s["screen"]["items"][index]["row"] == row);
        };
    }

    json item(int index) { return mPhone->display().snapshot()["screen"]["items"][index]; }

    // The request sent after `before` requests, waited for.
    std::string requestAfter(size_t before) {
        EXPECT_TRUE(mServer.waitForRequests(before + 1));
        const auto all = mServer.requests();
        return all.size() > before ? all[before] : std::string();
    }

    ApplicationServer mServer;
    std::unique_ptr<EmulatedPhone> mPhone;
};

std::vector<bool> ticks(const json& group) {
    std::vector<bool> out;
    for (const auto& choice : group["choices"]) {
        out.push_back(choice["selected"]);
    }
    return out;
}

TEST_F(ItemScreen, LunchOrderSendsRadioCheckBoxesWithUntickedOnesAndThePopupChoice) {
    start("<IppForm ItemCount=\"3\"><Title>Lunch</Title>" + url() +
              "<IppChoiceGroup Count=\"3\"><Label>Main</Label>" + option("main", "soup", "Soup") +
              option("main", "pasta", "Pasta", true) + option("main", "salad", "Salad") +
              "</IppChoiceGroup><IppChoiceGroup Type=\"MULTIPLE\" Count=\"3\"><Label>Extras</Label>" +
              option("extra", "bread", "Bread", true) + option("extra", "water", "Water") +
              option("extra", "cake", "Cake", true) +
              "</IppChoiceGroup><IppChoiceGroup Type=\"POPUP\" Count=\"3\"><Label>Drink</Label>" +
              option("drink", "tea", "Tea") + option("drink", "coffee", "Coffee", true) +
              option("drink", "juice", "Juice") + "</IppChoiceGroup></IppForm>" + sendCommand(),
          " CommandCount=\"1\"");
    json shot = mPhone->display().snapshot();
    const json& items = shot["screen"]["items"];
    ASSERT_EQ(items.size(), 4u) << shot.dump();
    EXPECT_EQ(items[1]["kind"], "choiceGroup");
    EXPECT_EQ(items[1]["choiceType"], "exclusive");
    EXPECT_EQ(items[1]["label"], "Main");
    EXPECT_EQ(ticks(items[1]), std::vector<bool>({false, true, false}));
    EXPECT_EQ(items[2]["choiceType"], "multiple");
    EXPECT_EQ(ticks(items[2]), std::vector<bool>({true, false, true}));
    EXPECT_EQ(items[3]["kind"], "selectionField");
    EXPECT_EQ(items[3]["label"], "Drink");
    EXPECT_EQ(items[3]["entries"], json({"Tea", "Coffee", "Juice"}));
    EXPECT_EQ(items[3]["value"], "Coffee") << "opens on the option selected in the document";

    // Radio: Salad replaces Pasta.
    pressUntil(Key::Down, focusAt(1, 2));
    shot = press(Key::Ok,
                 [](const json& s) { return s["screen"]["items"][1]["choices"][2]["selected"] == true; });
    EXPECT_EQ(ticks(shot["screen"]["items"][1]), std::vector<bool>({false, false, true}));
    // Check boxes: untick Bread, tick Water.
    pressUntil(Key::Down, focusAt(2, 0));
    press(Key::Ok, [](const json& s) { return s["screen"]["items"][2]["choices"][0]["selected"] == false; });
    pressUntil(Key::Down, focusAt(2, 1));
    shot = press(Key::Ok,
                 [](const json& s) { return s["screen"]["items"][2]["choices"][1]["selected"] == true; });
    EXPECT_EQ(ticks(shot["screen"]["items"][2]), std::vector<bool>({false, true, true}));
    // The popup opens in the widget, Down moves in it, Ok chooses and closes it.
    pressUntil(Key::Down, focusAt(3));
    shot = press(Key::Ok, [](const json& s) { return s["screen"]["items"][3]["popup"].is_object(); });
    ASSERT_TRUE(shot["screen"]["items"][3]["popup"].is_object()) << shot.dump();
    EXPECT_EQ(shot["screen"]["items"][3]["popup"]["focus"], 1);
    press(Key::Down, [](const json& s) { return s["screen"]["items"][3]["popup"]["focus"] == 2; });
    shot = press(Key::Ok, [](const json& s) { return s["screen"]["items"][3]["popup"].is_null(); });
    EXPECT_EQ(shot["screen"]["items"][3]["value"], "Juice");

    pressUntil(Key::Up, focusAt(0));
    mPhone->display().pressKey(Key::Ok);
    EXPECT_EQ(requestAfter(1), "/app/sent?drink=juice&extra=not_bread&extra=water&extra=cake&main=salad");
}

TEST_F(ItemScreen, OnlyThePressedButtonSendsItsPairAndNothingElseOfTheForm) {
    start("<IppForm ItemCount=\"4\"><Title>Survey</Title>" + url() +
          "<IppStringItem><Label>Question</Label><Text>Did you like it?</Text></IppStringItem>"
          "<IppTextField Key=\"comment\"><Label>Comment</Label><Text>fine</Text></IppTextField>"
          "<IppButton Key=\"answer\" Value=\"yes\"><Label>Yes</Label><AltText>[yes]</AltText></IppButton>"
          "<IppButton Key=\"answer\" Value=\"no\" Layout=\"RIGHT\"><Label>No</Label></IppButton>"
          "</IppForm><IppTicker><Text>Thank you for your time</Text></IppTicker>");
    json shot = mPhone->display().snapshot();
    EXPECT_EQ(shot["screen"]["ticker"], "Thank you for your time") << "a form shows the screen's ticker";
    const json& items = shot["screen"]["items"];
    ASSERT_EQ(items.size(), 4u) << shot.dump();
    EXPECT_EQ(items[2]["kind"], "imageItem");
    EXPECT_EQ(items[2]["label"], "Yes");
    EXPECT_EQ(items[2]["altText"], "[yes]");
    EXPECT_EQ(items[2]["informsOnOk"], true);

    pressUntil(Key::Down, focusAt(3));
    mPhone->display().pressKey(Key::Ok);
    EXPECT_EQ(requestAfter(1), "/app/sent?answer=no");
    pressUntil(Key::Up, focusAt(2));
    mPhone->display().pressKey(Key::Ok);
    EXPECT_EQ(requestAfter(2), "/app/sent?answer=yes");
}

TEST_F(ItemScreen, InputSliderIsSentAndAnAutomaticGaugeAdvancesToItsMaximumAndStops) {
    start("<IppForm ItemCount=\"2\"><Title>Ringer</Title>" + url() +
              "<IppGauge "
              "Key=\"volume\"><Label>Volume</Label><Maximum>10</Maximum><Initial>4</Initial></IppGauge>"
              "<IppGauge Key=\"elapsed\" Interactive=\"AUTO\"><Maximum>0:03</Maximum><Initial>1</Initial>"
              "</IppGauge></IppForm>" +
              sendCommand(),
          " CommandCount=\"1\"");
    json shot = mPhone->display().snapshot();
    const json& items = shot["screen"]["items"];
    ASSERT_EQ(items.size(), 3u) << shot.dump();
    EXPECT_EQ(items[1]["kind"], "slider");
    EXPECT_EQ(items[1]["label"], "Volume");
    EXPECT_EQ(items[1]["max"], 10);
    EXPECT_EQ(items[1]["value"], 4);
    EXPECT_EQ(items[1]["automatic"], false);
    EXPECT_EQ(items[2]["label"], "gauge") << "the label of a gauge without one";
    EXPECT_EQ(items[2]["automatic"], true);

    shot = waitFor([](const json& s) { return s["screen"]["items"][2]["value"] == 3; }, 3000);
    EXPECT_EQ(shot["screen"]["items"][2]["value"], 3) << "one step a second up to the maximum";

    pressUntil(Key::Down, focusAt(1));
    press(Key::Right, [](const json& s) { return s["screen"]["items"][1]["value"] == 5; });
    press(Key::Right, [](const json& s) { return s["screen"]["items"][1]["value"] == 6; });
    pressUntil(Key::Up, focusAt(0));
    mPhone->display().pressKey(Key::Ok);
    EXPECT_EQ(requestAfter(1), "/app/sent?volume=6") << "an automatic gauge sends nothing";
    EXPECT_EQ(item(2)["value"], 3) << "stopped at its maximum";
}

class PlayerScreen : public ItemScreen {
protected:
    void startPlayer(const std::string& attributes, const std::string& gauge, bool withUrl = true) {
        start("<IppPlayer" + attributes + ">" + (withUrl ? url() : std::string()) + gauge + "</IppPlayer>");
        waitFor([](const json& s) { return popupIs(s, "player"); });
    }
    json player() { return mPhone->display().snapshot()["popup"]; }
    // Presses `key` and returns the request it sent.
    std::string sendWith(Key key) {
        const size_t before = mServer.requests().size();
        mPhone->display().pressKey(key);
        return requestAfter(before);
    }
};

TEST_F(PlayerScreen, VoicemailPlayerFollowsItsGaugeAndSendsTheActionWords) {
    startPlayer(
        " State=\"PLAYING\" Mode=\"CALL\" Key=\"msg\"",
        "<IppGauge Key=\"pos\" Interactive=\"AUTO\"><Maximum>0:30</Maximum><Initial>0</Initial></IppGauge>");
    json shot = player();
    ASSERT_EQ(shot["kind"], "player") << mPhone->display().snapshot().dump();
    EXPECT_EQ(shot["state"], 0) << "playing";
    EXPECT_EQ(shot["mode"], 0);
    EXPECT_EQ(shot["progress"]["max"], 30);
    shot = waitFor([](const json& s) { return s["popup"]["progress"]["value"] >= 2; }, 4000);
    const int progress = shot["popup"]["progress"]["value"];
    ASSERT_GE(progress, 2) << "the progress bar follows the gauge";

    const std::string paused = sendWith(Key::Ok);
    EXPECT_EQ(paused.rfind("/app/sent?msg=pause&pos=", 0), 0u) << paused;
    EXPECT_GE(std::stoi(paused.substr(paused.find("pos=") + 4)), progress);
    EXPECT_EQ(sendWith(Key::Right).substr(0, 24), "/app/sent?msg=forward&po");
    EXPECT_EQ(sendWith(Key::Left).substr(0, 23), "/app/sent?msg=rewind&po");
    EXPECT_EQ(sendWith(Key::Up).substr(0, 28), "/app/sent?msg=skip_rewind&po");
    EXPECT_EQ(sendWith(Key::Down).substr(0, 29), "/app/sent?msg=skip_forward&po");
    EXPECT_EQ(sendWith(Key::Star).substr(0, 23), "/app/sent?msg=delete&po");
    EXPECT_EQ(sendWith(Key::Hash).substr(0, 24), "/app/sent?msg=confirm&po");
    EXPECT_EQ(sendWith(Key::Digit0).substr(0, 21), "/app/sent?msg=call&po");
    EXPECT_EQ(sendWith(Key::Digit5).substr(0, 21), "/app/sent?msg=stop&po");
    EXPECT_EQ(sendWith(Key::Back).substr(0, 23), "/app/sent?msg=cancel&po") << "the gauge drives the player";
}

TEST_F(PlayerScreen, PlayerStopsAtTheEndOfItsGauge) {
    startPlayer(" State=\"PLAYING\" Mode=\"RECORD\" Key=\"msg\"",
                "<IppGauge Key=\"pos\" Interactive=\"AUTO\"><Maximum>2</Maximum></IppGauge>");
    json shot = waitFor([](const json& s) { return s["popup"]["state"] == 3; }, 4000);
    EXPECT_EQ(shot["popup"]["state"], 3) << shot.dump();
    EXPECT_EQ(shot["popup"]["mode"], 1);
    EXPECT_EQ(shot["popup"]["progress"]["value"], 0) << "progress starts over at the end";
}

TEST_F(PlayerScreen, StoppedPlayerSwallowsTheFirstStopAndCancel) {
    startPlayer(" State=\"STOPPED\" Mode=\"CALL\" Key=\"msg\"",
                "<IppGauge Key=\"pos\"><Maximum>9</Maximum></IppGauge>");
    EXPECT_EQ(player()["state"], 2);
    // The first Stop only leaves the stopped state; Ok plays; the next Stop is sent.
    mPhone->display().pressKey(Key::Digit5);
    EXPECT_EQ(sendWith(Key::Ok), "/app/sent?msg=play&pos=0");
    EXPECT_EQ(sendWith(Key::Digit5), "/app/sent?msg=stop&pos=0");
    EXPECT_EQ(mServer.requests().size(), 3u);
}

TEST_F(PlayerScreen, FirstCancelOnAStoppedPlayerEndsItAndAPlayerWithoutUrlSendsNothing) {
    startPlayer(" State=\"STOPPED\" Mode=\"RECORD\" Key=\"msg\"", "", false);
    EXPECT_EQ(player()["state"], 2);
    json shot = press(Key::Back, [](const json& s) { return s["popup"]["state"] == 3; });
    EXPECT_EQ(shot["popup"]["state"], 3);
    EXPECT_EQ(shot["popup"]["mode"], 1);
    for (Key key : {Key::Ok, Key::Right, Key::Digit5, Key::Digit5, Key::Star, Key::Back}) {
        mPhone->display().pressKey(key);
    }
    mPhone->display().waitUntilSettled();
    EXPECT_EQ(mServer.requests().size(), 1u) << "no Url: no request";
    EXPECT_TRUE(popupIs(mPhone->display().snapshot(), "player"));
}

TEST_F(ItemScreen, StringItemsSpacerAndImageItemShowAndSendNothing) {
    start("<IppForm ItemCount=\"5\"><Title>Contact</Title>" + url() +
              "<IppStringItem><Label>Name</Label><Text>Smith</Text></IppStringItem>"
              "<IppSpacer NewLine=\"NEWLINE_BEFORE\" Height=\"20\"/>"
              "<IppImageItem Layout=\"LEFT\"><Label>Photo</Label><AltText>no photo</AltText></IppImageItem>"
              "<IppStringItem/><IppTextField Key=\"note\"><Label>Note</Label></IppTextField></IppForm>" +
              sendCommand(),
          " CommandCount=\"1\"");
    json shot = mPhone->display().snapshot();
    const json& items = shot["screen"]["items"];
    ASSERT_EQ(items.size(), 6u) << shot.dump();
    EXPECT_EQ(items[1]["kind"], "textField");
    EXPECT_EQ(items[1]["label"], "Name");
    EXPECT_EQ(items[1]["value"], "Smith");
    EXPECT_EQ(items[1]["readOnly"], true);
    EXPECT_EQ(items[2]["label"], "");
    EXPECT_EQ(items[2]["value"], "");
    EXPECT_EQ(items[2]["focusable"], false) << "a spacer never takes the focus";
    EXPECT_EQ(items[3]["kind"], "imageItem");
    EXPECT_EQ(items[3]["altText"], "no photo");
    EXPECT_TRUE(items[3]["image"].is_null());
    EXPECT_EQ(items[4]["value"], "");

    // Down from the options field skips the spacer.
    press(Key::Down, focusAt(1));
    shot = press(Key::Down, [](const json& s) { return s["screen"]["focus"] != 1; });
    EXPECT_EQ(shot["screen"]["focus"], 3);
    pressUntil(Key::Up, focusAt(0));
    mPhone->display().pressKey(Key::Ok);
    EXPECT_EQ(requestAfter(1), "/app/sent?note=");
}

TEST_F(ItemScreen, TickerOnAListAndNoneForAnEmptyText) {
    start("<IppList Count=\"1\"><Title>News</Title>" + url() + option("n", "1", "First") +
          "</IppList><IppTicker><Text>Breaking: tickers scroll</Text></IppTicker>");
    json shot = mPhone->display().snapshot();
    EXPECT_EQ(shot["screen"]["kind"], "list");
    EXPECT_EQ(shot["screen"]["ticker"], "Breaking: tickers scroll") << shot.dump();

    mServer.setDocument("/app/sent", "<IppDisplay><IppScreen ID=\"2\"><IppTextBox>" + url() +
                                         "<Text>Body</Text></IppTextBox><IppTicker><Text></Text></IppTicker>"
                                         "</IppScreen></IppDisplay>");
    mPhone->display().pressKey(Key::Ok);
    shot = waitFor([](const json& s) { return s["screen"]["kind"] == "textBox"; });
    ASSERT_EQ(shot["screen"]["kind"], "textBox") << shot.dump();
    EXPECT_TRUE(shot["screen"]["ticker"].is_null()) << "an empty ticker makes none";
}

TEST_F(ItemScreen, BadCountsAndNumbersFallBack) {
    start("<IppForm ItemCount=\"6\">" + url() + "<IppChoiceGroup Type=\"MULTIPLE\" Count=\"lots\">" +
              option("a", "1", "A", true) +
              "</IppChoiceGroup><IppChoiceGroup Type=\"MULTIPLE\" Count=\"-4\">" +
              option("b", "1", "B", true) +
              "</IppChoiceGroup><IppChoiceGroup Type=\"SIDEWAYS\" Count=\"999999\">" + option("c", "1", "C") +
              option("c", "2", "D", true) + "</IppChoiceGroup><IppChoiceGroup Type=\"POPUP\">" +
              option("d", "1", "E") +
              "</IppChoiceGroup><IppGauge Key=\"g\"><Maximum>abc</Maximum><Initial>-7</Initial></IppGauge>"
              "<IppGauge Key=\"h\"><Maximum>0:10</Maximum><Initial>1:30</Initial></IppGauge></IppForm>" +
              sendCommand(),
          " CommandCount=\"1\"");
    json shot = mPhone->display().snapshot();
    const json& items = shot["screen"]["items"];
    ASSERT_EQ(items.size(), 6u) << "the option-less popup has no widget: " << shot.dump();
    EXPECT_EQ(items[1]["label"], "ChoiceGroup");
    EXPECT_TRUE(items[1]["choices"].empty()) << "an unreadable Count shows no option";
    EXPECT_TRUE(items[2]["choices"].empty()) << "a negative Count shows no option";
    EXPECT_EQ(items[3]["choiceType"], "exclusive") << "an unknown Type is a radio group";
    EXPECT_EQ(ticks(items[3]), std::vector<bool>({false, true}))
        << "a Count beyond the options shows them all";
    EXPECT_EQ(items[4]["max"], 100) << "an unreadable Maximum keeps 100";
    EXPECT_EQ(items[4]["value"], 0) << "a negative Initial gives 0";
    EXPECT_EQ(items[5]["max"], 10);
    EXPECT_EQ(items[5]["value"], 10) << "an Initial beyond the maximum gives the maximum";
    mPhone->display().pressKey(Key::Ok);
    EXPECT_EQ(requestAfter(1), "/app/sent?c=2&g=0&h=10");
}

// Keys, gauge ticks and popup changes on the host's and event threads while server pushes
// replace the form with a player and back on the queue thread: widgets and timers are deleted
// under the feet of the other threads. Run under ThreadSanitizer and AddressSanitizer.
TEST_F(ItemScreen, KeysAndGaugeTicksWhilePushesReplaceTheScreen) {
    const std::string form =
        "<IppForm ItemCount=\"5\">" + url() + "<IppChoiceGroup Type=\"POPUP\" Count=\"2\">" +
        option("d", "1", "One") + option("d", "2", "Two") +
        "</IppChoiceGroup><IppChoiceGroup Type=\"MULTIPLE\" Count=\"2\">" + option("m", "1", "A") +
        option("m", "2", "B") +
        "</IppChoiceGroup><IppGauge Interactive=\"AUTO\"><Maximum>100</Maximum></IppGauge>"
        "<IppGauge Key=\"v\"/><IppButton Key=\"b\" Value=\"1\"><Label>Go</Label></IppButton></IppForm>"
        "<IppTicker><Text>busy</Text></IppTicker>";
    const std::string player =
        "<IppPlayer State=\"PLAYING\" Mode=\"CALL\" Key=\"p\">" + url() +
        "<IppGauge Key=\"g\" Interactive=\"AUTO\"><Maximum>100</Maximum></IppGauge></IppPlayer>";
    auto document = [](int id, const std::string& inside) {
        return "<IppDisplay><IppScreen ID=\"" + std::to_string(id) + "\">" + inside +
               "</IppScreen></IppDisplay>";
    };
    mServer.setDocument("/app/form", document(3, form));
    mServer.setDocument("/app/player", document(4, player));
    start(form);

    std::atomic<bool> done{false};
    std::thread presser([&] {
        const Key keys[] = {Key::Down, Key::Ok,     Key::Right, Key::Down,
                            Key::Ok,   Key::Digit5, Key::Up,    Key::Back};
        for (unsigned i = 0; !done; ++i) {
            mPhone->display().pressKey(keys[i % 8]);
            std::this_thread::sleep_for(std::chrono::milliseconds(7));
        }
    });
    const std::string server = "ServerAddr=127.0.0.1&ServerPort=" + std::to_string(mServer.port());
    for (int round = 0; round < 24; ++round) {
        const std::string page = round % 2 == 0 ? "app/player" : "app/form";
        EXPECT_EQ(mPhone->push(server + "&ProgramName=" + page, uniqueApplicationName("Items-"), 3), 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(120));
    }
    done = true;
    presser.join();
    int players = 0;
    int forms = 0;
    for (const std::string& request : mServer.requests()) {
        players += request.rfind("/app/player", 0) == 0 ? 1 : 0;
        forms += request.rfind("/app/form", 0) == 0 ? 1 : 0;
    }
    EXPECT_GT(players, 0) << "the pushes were fetched";
    EXPECT_GT(forms, 0);
    mPhone->display().waitUntilSettled();
    const json shot = mPhone->display().snapshot();
    EXPECT_TRUE(shot["screen"].is_object() || shot["popup"].is_object()) << shot.dump();
    mPhone->stop();
}

} // namespace
