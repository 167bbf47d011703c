// One web page's live feed: the screen, the phone's state and the journal's news as server-sent events.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

class EmulatedPhone;
class PhoneJournal;

namespace httplib {
class DataSink;
}

// Events, each "event: NAME" and one "data:" line of JSON: "screen" (the display snapshot),
// "state" (the phone's state), "requests", "log" and "pushes" (arrays of journal entries not sent
// before). Journal events carry "id:" with the newest sequence sent, so a page that reconnects
// with Last-Event-ID gets only what it missed; screen and state are sent again on every connect.
class EventStream {
public:
    static constexpr std::size_t kMaxLogLinesOnConnect = 500;

    EventStream(EmulatedPhone& phone, const PhoneJournal& journal, std::uint64_t lastEventId);

    // Writes what is new, waiting up to `wait` for news first; false when the page has gone.
    bool writeNews(httplib::DataSink& sink, std::chrono::milliseconds wait);

private:
    bool writeScreen(httplib::DataSink& sink, bool always);
    bool writeState(httplib::DataSink& sink, bool always);
    bool writeJournal(httplib::DataSink& sink, bool first);
    bool writeKeepAlive(httplib::DataSink& sink);
    // Notes the time of a write, for the keep-alive; passes its result on.
    bool sent(bool written);

    EmulatedPhone& mPhone;
    const PhoneJournal& mJournal;
    bool mFirst = true;
    std::uint64_t mNewsSeen = 0;
    std::uint64_t mRevisionSent = 0;
    std::string mStateSent;
    std::uint64_t mJournalSent;
    std::chrono::steady_clock::time_point mLastWrite;
};
