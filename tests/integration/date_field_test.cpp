// Date fields of a form on the emulated phone: shown in the phone's formats, edited, sent in the
// documents' formats, and re-drawn when the phone's formats change.
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

class DateFieldScreen : public ::testing::Test {
protected:
    void start(const std::string& fields, const std::string& dateFormat, const std::string& timeFormat) {
        PhoneOptions options;
        options.applicationName = uniqueApplicationName("Dates-");
        options.dateFormat = dateFormat;
        options.timeFormat = timeFormat;
        mPhone = std::make_unique<EmulatedPhone>(options);
        mServer.setDocument(
            "/app/start",
            "<IppDisplay><IppScreen ID=\"1\" CommandCount=\"1\"><IppForm ItemCount=\"9\"><Url>" + url() +
                "</Url>" + fields +
                "</IppForm><IppCommand Type=\"SELECT\"><Label>Send</Label></IppCommand>"
                "</IppScreen></IppDisplay>");
        mServer.setDocument("/app/sent", "");
        ASSERT_TRUE(mPhone->configuration().setValues(
            loopbackApplication(uniqueApplicationName("Dates-"), std::to_string(mServer.port()), "en")));
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

    // Values of the items after the options field.
    json values() {
        json out = json::array();
        const json items = mPhone->display().snapshot()["screen"]["items"];
        for (size_t i = 1; i < items.size(); ++i) {
            out.push_back(items[i]["value"]);
        }
        return out;
    }

    json waitForValues(const json& expected) {
        waitFor([&](const json&) { return values() == expected; });
        return values();
    }

    void focus(int index) {
        while (true) {
            const int now = mPhone->display().snapshot()["screen"]["focus"];
            if (now == index) {
                return;
            }
            mPhone->display().pressKey(now < index ? Key::Down : Key::Up);
            waitFor([now](const json& s) { return s["screen"]["focus"] != now; });
        }
    }

    // Replaces the text of item `index` as a user would: Ok, erase, type, Ok.
    void retype(int index, const std::string& text) {
        focus(index);
        mPhone->display().pressKey(Key::Ok);
        for (int i = 0; i < 24; ++i) {
            mPhone->display().pressKey(Key::Left);
        }
        mPhone->display().typeText(text);
        mPhone->display().pressKey(Key::Ok);
        waitFor([index](const json& s) { return s["screen"]["items"][index]["editing"] == false; });
    }

    std::string send() {
        const size_t before = mServer.requests().size();
        focus(0);
        mPhone->display().pressKey(Key::Ok);
        EXPECT_TRUE(mServer.waitForRequests(before + 1));
        return mServer.requests().back();
    }

    ApplicationServer mServer;
    std::unique_ptr<EmulatedPhone> mPhone;
};

const std::string kFields =
    "<IppDateField Mode=\"DATE\" Default=\"MODE\" DateKey=\"day\"><Label>Day</Label><Date>2009-03-07</Date>"
    "</IppDateField>"
    "<IppDateField Mode=\"TIME\" Default=\"MODE\" TimeKey=\"at\"><Label>At</Label><Time>14:05</Time>"
    "</IppDateField>"
    "<IppDateField Default=\"MODE\" DateKey=\"d\" TimeKey=\"t\"><Label>When</Label><Timezone>UTC</Timezone>"
    "<Date>2010-12-31</Date><Time>00:30</Time></IppDateField>"
    "<IppDateField Mode=\"DATE\" DateKey=\"none\"><Label>Empty</Label><Date>2001-01-01</Date></IppDateField>";

struct Formats {
    std::string date;
    std::string time;
    json shown;
    std::string typedDate;
    std::string typedTime;
    std::string timeAfterEdit;
};

TEST_F(DateFieldScreen, EditedValuesAreSentTheSameWhateverThePhoneShows) {
    const Formats cases[] = {
        {"DD.MM.YYYY", "24HR", json({"07.03.2009", "14:05", "31.12.2010 00:30", ""}), "08.04.2011", "18:45",
         "18:45"},
        {"MM/DD/YYYY", "12HR", json({"03/07/2009", "02:05 pm", "12/31/2010 12:30 am", ""}), "04/08/2011",
         "18:45", "06:45 pm"},
    };
    std::vector<std::string> untouched;
    std::vector<std::string> edited;
    for (const Formats& formats : cases) {
        SCOPED_TRACE(formats.date + " " + formats.time);
        start(kFields, formats.date, formats.time);
        const json shot = mPhone->display().snapshot();
        EXPECT_EQ(shot["screen"]["items"][1]["fieldType"], 2);
        EXPECT_EQ(shot["screen"]["items"][2]["fieldType"], 8);
        EXPECT_EQ(shot["screen"]["items"][3]["fieldType"], 9);
        EXPECT_EQ(shot["screen"]["items"][3]["label"], "When");
        EXPECT_EQ(values(), formats.shown);
        untouched.push_back(send());

        retype(1, formats.typedDate);
        // A time is typed in 24 hours and shown in the phone's format once the edit ends.
        retype(2, formats.typedTime);
        json shown = formats.shown;
        shown[0] = formats.typedDate;
        shown[1] = formats.timeAfterEdit;
        EXPECT_EQ(waitForValues(shown), shown);
        edited.push_back(send());
        mPhone.reset();
    }
    EXPECT_EQ(untouched[0], "/app/sent?at=14:05:00.000&d=2010-12-31&day=2009-03-07&t=00:30:00.000")
        << "the empty field sends nothing";
    EXPECT_EQ(untouched[1], untouched[0]);
    EXPECT_EQ(edited[0], "/app/sent?at=18:45:00.000&d=2010-12-31&day=2011-04-08&t=00:30:00.000");
    EXPECT_EQ(edited[1], edited[0]);
}

TEST_F(DateFieldScreen, AFormatChangeWhileShownRedrawsTheFields) {
    start(kFields, "DD.MM.YYYY", "24HR");
    retype(2, "18:45");
    // The field's element takes the edit on its queue's thread; the format changes after that.
    std::string busy;
    ASSERT_TRUE(mPhone->waitUntilIdle(std::chrono::seconds(10), busy)) << busy;
    mPhone->setTimeFormat("12HR");
    EXPECT_EQ(waitForValues(json({"07.03.2009", "06:45 pm", "31.12.2010 12:30 am", ""})),
              json({"07.03.2009", "06:45 pm", "31.12.2010 12:30 am", ""}));
    mPhone->setDateFormat("YYYY-MM-DD");
    EXPECT_EQ(waitForValues(json({"2009-03-07", "06:45 pm", "2010-12-31 12:30 am", ""})),
              json({"2009-03-07", "06:45 pm", "2010-12-31 12:30 am", ""}));
    EXPECT_FALSE(mPhone->setDateFormat("DD/MM/YY")) << "not a format of the phone";
    EXPECT_EQ(send(), "/app/sent?at=18:45:00.000&d=2010-12-31&day=2009-03-07&t=00:30:00.000");
}

TEST_F(DateFieldScreen, ImpossibleAndPartialValuesAreShownAndSentAsTheyAre) {
    start(
        "<IppDateField Mode=\"DATE\" Default=\"MODE\" DateKey=\"feb\"><Date>2009-02-30</Date></IppDateField>"
        "<IppDateField Mode=\"TIME\" Default=\"MODE\" TimeKey=\"late\"><Time>25:61</Time></IppDateField>"
        "<IppDateField Mode=\"DATE\" Default=\"MODE\" DateKey=\"part\"><Date>2009-03</Date></IppDateField>"
        "<IppDateField Mode=\"TIME\" TimeKey=\"typed\"/>",
        "DD.MM.YYYY", "24HR");
    EXPECT_EQ(values(), json({"30.02.2009", "25:61", "2009-03", ""}));
    retype(4, "7:5");
    EXPECT_EQ(waitForValues(json({"30.02.2009", "25:61", "2009-03", "07:05"})),
              json({"30.02.2009", "25:61", "2009-03", "07:05"}));
    EXPECT_EQ(send(), "/app/sent?feb=2009-02-30&late=25:61:00.000&part=2009-03&typed=07:05:00.000");
}

// Format changes arrive on the host's thread while the queue thread replaces the form that holds
// the fields: no change may reach a field's widget while it is being deleted.
TEST_F(DateFieldScreen, FormatChangesWhilePushesReplaceTheFormAreSafe) {
    start(kFields, "DD.MM.YYYY", "24HR");
    mServer.setDocument("/app/again", mServer.documentFor("/app/start"));
    std::atomic<bool> done{false};
    std::thread flipper([&] {
        for (int i = 0; !done; ++i) {
            mPhone->setTimeFormat(i % 2 == 0 ? "12HR" : "24HR");
            mPhone->setDateFormat(i % 3 == 0 ? "MM/DD/YYYY" : "DD.MM.YYYY");
        }
    });
    const std::string application = uniqueApplicationName("Dates-");
    for (size_t i = 0; i < 20; ++i) {
        mPhone->push("ServerAddr=127.0.0.1&ServerPort=" + std::to_string(mServer.port()) +
                         "&ProgramName=app/again",
                     application, 3);
        mPhone->display().pressKey(Key::Down);
        EXPECT_TRUE(mServer.waitForRequests(i + 2));
    }
    done = true;
    flipper.join();
    mPhone->setTimeFormat("24HR");
    mPhone->setDateFormat("DD.MM.YYYY");
    const json expected = json({"07.03.2009", "14:05", "31.12.2010 00:30", ""});
    EXPECT_EQ(waitForValues(expected), expected) << "every field follows the last change";
}

} // namespace
