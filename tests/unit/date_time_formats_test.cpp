// The phone's date and time formats: their texts, the conversions, and the GUI handler's listeners.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AGPDateTimeChangeListenerIfc.h"
#include "AGPGUIHandler.h"

namespace {

using Ifc = AGPDateTimeChangeListenerIfc;

TEST(DateTimeFormats, DatesChangeOrderAndSeparatorAndKeepTheTextAround) {
    EXPECT_EQ(Ifc::getDateFormat("DD.MM.YYYY"), Ifc::DD_DOT_MM_DOT_YYYY);
    EXPECT_EQ(Ifc::getDateFormat("dd.mm.yyyy"), Ifc::DATE_FORMAT_UNKNOWN);
    EXPECT_EQ(Ifc::convertDateFormat("2009-03-07", Ifc::YYYY_DASH_MM_DASH_DD, Ifc::DD_DOT_MM_DOT_YYYY),
              "07.03.2009");
    EXPECT_EQ(
        Ifc::convertDateFormat("on 03/07/2009 at 9", Ifc::MM_SLASH_DD_SLASH_YYYY, Ifc::YYYY_DASH_MM_DASH_DD),
        "on 2009-03-07 at 9");
    EXPECT_EQ(Ifc::convertDateFormat("7.3.2009", Ifc::DD_DOT_MM_DOT_YYYY, Ifc::MM_SLASH_DD_SLASH_YYYY),
              "3/7/2009")
        << "numbers are copied as they are";
    EXPECT_EQ(Ifc::convertDateFormat("2009-03", Ifc::YYYY_DASH_MM_DASH_DD, Ifc::DD_DOT_MM_DOT_YYYY),
              "2009-03");
    EXPECT_EQ(Ifc::convertDateFormat("2009-03-07", Ifc::DATE_FORMAT_UNKNOWN, Ifc::DD_DOT_MM_DOT_YYYY),
              "2009-03-07");
    EXPECT_EQ(Ifc::getJustDate_YYYY_DASH_MM_DASH_DD("x 2009-03-07 14:05"), "2009-03-07");
    EXPECT_EQ(Ifc::getJustDate_YYYY_DASH_MM_DASH_DD("07.03.2009"), "");
}

TEST(DateTimeFormats, TimesMoveBetweenTwelveAndTwentyFourHours) {
    EXPECT_EQ(Ifc::convertTimeFormat("00:30", Ifc::HR24, Ifc::HR12), "12:30 am");
    EXPECT_EQ(Ifc::convertTimeFormat("14:05", Ifc::HR24, Ifc::HR12), "02:05 pm");
    EXPECT_EQ(Ifc::convertTimeFormat("12:00", Ifc::HR24, Ifc::HR12), "12:00 pm");
    EXPECT_EQ(Ifc::convertTimeFormat("12:10 pm", Ifc::HR12, Ifc::HR24), "12:10");
    EXPECT_EQ(Ifc::convertTimeFormat("12:10 am", Ifc::HR12, Ifc::HR24), "00:10");
    EXPECT_EQ(Ifc::convertTimeFormat("07.03.2009 6:45 pm", Ifc::HR12, Ifc::HR24), "07.03.2009 18:45");
    EXPECT_EQ(Ifc::convertTimeFormat("7:5", Ifc::HR24, Ifc::HR24), "07:05");
    EXPECT_EQ(Ifc::convertTimeFormat("noon", Ifc::HR24, Ifc::HR12), "noon");
    EXPECT_EQ(Ifc::convertTimeFormat("14:05", Ifc::HR24, Ifc::TIME_FORMAT_UNKNOWN), "14:05");
    EXPECT_EQ(Ifc::getJustTime_HH_COLLON_MM("at 02:05 pm sharp"), "02:05 pm");
    EXPECT_EQ(Ifc::getJustTime_HH_COLLON_MM_COLLON_SS_DOT_MSS("14:05"), "14:05:00.000");
    EXPECT_EQ(Ifc::getJustTime_HH_COLLON_MM_COLLON_SS_DOT_MSS(""), "");
}

class Recorder : public AGPDateTimeChangeListenerIfc {
public:
    void dateFormatChanged(AGPDateFormat from, AGPDateFormat to) override {
        calls.push_back("date " + std::to_string(from) + ">" + std::to_string(to));
    }
    void timeFormatChanged(AGPTimeFormat from, AGPTimeFormat to) override {
        calls.push_back("time " + std::to_string(from) + ">" + std::to_string(to));
    }
    std::vector<std::string> calls;
};

TEST(DateTimeFormats, TheGuiHandlerTellsItsListenersOfRealChangesOnly) {
    AGPGUIHandler gui;
    EXPECT_EQ(gui.getDateFormat(), Ifc::DATE_FORMAT_UNKNOWN);
    EXPECT_EQ(gui.getTimeFormat(), Ifc::TIME_FORMAT_UNKNOWN);
    Recorder first;
    Recorder second;
    gui.addDateTimeChangeListener(&first);
    gui.addDateTimeChangeListener(&second);
    gui.addDateTimeChangeListener(&first);
    gui.setDateFormat("DD.MM.YYYY");
    gui.setDateFormat("DD.MM.YYYY");
    gui.setTimeFormat("12HR");
    gui.removeDateTimeChangeListener(&first);
    gui.setTimeFormat("bogus");
    EXPECT_EQ(first.calls, (std::vector<std::string>{"date 3>2", "date 3>2", "time 2>0", "time 2>0"}));
    EXPECT_EQ(second.calls, (std::vector<std::string>{"date 3>2", "time 2>0", "time 0>2"}));
    EXPECT_EQ(gui.getTimeFormat(), Ifc::TIME_FORMAT_UNKNOWN);
}

} // namespace
