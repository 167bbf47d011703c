// What the phone did, kept for the control API and the web page: requests, pushes and log lines.
#include "PhoneJournal.h"

#include <ctime>
#include <iterator>

namespace {

// Entries are kept in sequence order, so the new ones are found from the back.
std::deque<nlohmann::json>::const_iterator firstAfter(const std::deque<nlohmann::json>& entries,
                                                      std::uint64_t after) {
    auto first = entries.end();
    while (first != entries.begin() && std::prev(first)->at("sequence").get<std::uint64_t>() > after) {
        --first;
    }
    return first;
}

nlohmann::json entriesAfter(const std::deque<nlohmann::json>& entries, std::uint64_t after) {
    nlohmann::json result = nlohmann::json::array();
    for (auto entry = firstAfter(entries, after); entry != entries.end(); ++entry) {
        result.push_back(*entry);
    }
    return result;
}

} // namespace

PhoneJournal::PhoneJournal(int logLevel) : mLogLevel(logLevel) {
    addLogSink(this);
}

PhoneJournal::~PhoneJournal() {
    removeLogSink(this);
}

void PhoneJournal::keep(std::deque<nlohmann::json>& entries, nlohmann::json entry, size_t limit) {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        entry["sequence"] = mNextSequence++;
        entries.push_back(std::move(entry));
        while (entries.size() > limit) {
            entries.pop_front();
        }
    }
    mNews.notify();
}

void PhoneJournal::transferFinished(const HttpTransferRecord& record) {
    nlohmann::json headers = nlohmann::json::array();
    for (const auto& header : record.responseHeaders.getAllHeaders()) {
        headers.push_back({header.first, header.second});
    }
    keep(mRequests,
         {{"time", static_cast<long>(std::time(nullptr))},
          {"method", record.method},
          {"url", record.requestedUrl},
          {"finalUrl", record.finalUrl},
          {"redirections", record.redirections},
          {"success", record.success},
          {"connectionStatus", record.connectionStatus},
          {"httpStatus", record.httpStatus},
          {"headers", headers},
          {"bodySize", record.bodySize},
          {"body", record.body},
          {"bodyTruncated", record.bodyTruncated},
          {"requestBody", record.requestBody},
          {"durationMs", record.durationMs},
          {"error", record.errorDetail}},
         kMaxRequests);
}

void PhoneJournal::receive(const LogEntry& entry) {
    keep(mLogLines,
         {{"time", entry.time},
          {"thread", entry.thread},
          {"module", entry.module},
          {"level", entry.level},
          {"source", entry.sourcePath},
          {"line", entry.line},
          {"text", entry.text}},
         kMaxLogLines);
}

void PhoneJournal::pushReceived(const std::string& via, const std::string& data,
                                const std::string& application, int type, int result) {
    keep(mPushes,
         {{"time", static_cast<long>(std::time(nullptr))},
          {"via", via},
          {"application", application},
          {"type", type},
          {"data", data},
          {"accepted", result == 1}},
         kMaxPushes);
}

nlohmann::json PhoneJournal::requests(std::uint64_t after) const {
    std::lock_guard<std::mutex> lock(mMutex);
    return entriesAfter(mRequests, after);
}

nlohmann::json PhoneJournal::pushes(std::uint64_t after) const {
    std::lock_guard<std::mutex> lock(mMutex);
    return entriesAfter(mPushes, after);
}

nlohmann::json PhoneJournal::logLines(std::uint64_t after, const std::string& module, int maxLevel) const {
    nlohmann::json result = nlohmann::json::array();
    std::lock_guard<std::mutex> lock(mMutex);
    for (auto line = firstAfter(mLogLines, after); line != mLogLines.end(); ++line) {
        if ((*line)["level"].get<int>() <= maxLevel && (module.empty() || (*line)["module"] == module)) {
            result.push_back(*line);
        }
    }
    return result;
}

std::uint64_t PhoneJournal::lastSequence() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mNextSequence - 1;
}
