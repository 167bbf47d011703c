// One web page's live feed: the screen, the phone's state and the journal's news as server-sent events.
#include "EventStream.h"

#include <httplib.h>

#include <nlohmann/json.hpp>

#include "EmulatedPhone.h"
#include "PhoneJournal.h"

namespace {

// Browsers and proxies drop a silent connection after a while; a comment line keeps it open and
// tells us when the page has gone.
constexpr std::chrono::seconds kKeepAliveInterval(5);

bool writeText(httplib::DataSink& sink, const std::string& text) {
    return sink.write(text.data(), text.size());
}

// JSON dumps never hold a raw line break, so one "data:" line carries the whole event.
bool writeEvent(httplib::DataSink& sink, const char* name, const nlohmann::json& data, std::uint64_t id = 0) {
    std::string text = "event: " + std::string(name) + "\n";
    if (id != 0) {
        text += "id: " + std::to_string(id) + "\n";
    }
    text += "data: " + data.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n\n";
    return writeText(sink, text);
}

// Entries that came in after `last` was read wait for the next round, so none is sent twice.
nlohmann::json upTo(const nlohmann::json& entries, std::uint64_t last) {
    nlohmann::json kept = nlohmann::json::array();
    for (const nlohmann::json& entry : entries) {
        if (entry["sequence"].get<std::uint64_t>() <= last) {
            kept.push_back(entry);
        }
    }
    return kept;
}

nlohmann::json newest(const nlohmann::json& entries, std::size_t count) {
    if (entries.size() <= count) {
        return entries;
    }
    return nlohmann::json(entries.end() - static_cast<std::ptrdiff_t>(count), entries.end());
}

} // namespace

EventStream::EventStream(EmulatedPhone& phone, const PhoneJournal& journal, std::uint64_t lastEventId)
    : mPhone(phone), mJournal(journal), mJournalSent(lastEventId),
      mLastWrite(std::chrono::steady_clock::now()) {}

bool EventStream::writeNews(httplib::DataSink& sink, std::chrono::milliseconds wait) {
    const bool first = mFirst;
    mFirst = false;
    mNewsSeen = first ? mJournal.news().count() : mJournal.news().waitPast(mNewsSeen, wait);
    return writeScreen(sink, first) && writeState(sink, first) && writeJournal(sink, first) &&
           writeKeepAlive(sink);
}

bool EventStream::writeScreen(httplib::DataSink& sink, bool always) {
    if (!always && mPhone.display().revision() == mRevisionSent) {
        return true;
    }
    mPhone.display().waitUntilSettled();
    const nlohmann::json snapshot = mPhone.display().snapshot();
    mRevisionSent = snapshot["revision"].get<std::uint64_t>();
    return sent(writeEvent(sink, "screen", snapshot));
}

bool EventStream::writeState(httplib::DataSink& sink, bool always) {
    const nlohmann::json state = mPhone.describeState();
    std::string text = state.dump();
    if (!always && text == mStateSent) {
        return true;
    }
    mStateSent = std::move(text);
    return sent(writeEvent(sink, "state", state));
}

bool EventStream::writeJournal(httplib::DataSink& sink, bool first) {
    const std::uint64_t last = mJournal.lastSequence();
    if (last == mJournalSent) {
        return true;
    }
    const nlohmann::json requests = upTo(mJournal.requests(mJournalSent), last);
    const nlohmann::json pushes = upTo(mJournal.pushes(mJournalSent), last);
    nlohmann::json log = upTo(mJournal.logLines(mJournalSent, "", 6), last);
    if (first) {
        log = newest(log, kMaxLogLinesOnConnect);
    }
    mJournalSent = last;
    return (requests.empty() || sent(writeEvent(sink, "requests", requests, last))) &&
           (pushes.empty() || sent(writeEvent(sink, "pushes", pushes, last))) &&
           (log.empty() || sent(writeEvent(sink, "log", log, last)));
}

bool EventStream::writeKeepAlive(httplib::DataSink& sink) {
    if (std::chrono::steady_clock::now() - mLastWrite < kKeepAliveInterval) {
        return true;
    }
    return sent(writeText(sink, ": keep-alive\n\n"));
}

bool EventStream::sent(bool written) {
    mLastWrite = std::chrono::steady_clock::now();
    return written;
}
