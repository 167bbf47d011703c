// What the phone did, kept for the control API and the web page: requests made and log lines.
#include "PhoneJournal.h"

#include <ctime>

namespace {

void keepNewest(std::deque<nlohmann::json>& entries, nlohmann::json entry, size_t limit) {
    entries.push_back(std::move(entry));
    while (entries.size() > limit) {
        entries.pop_front();
    }
}

} // namespace

PhoneJournal::PhoneJournal(int logLevel) : mLogLevel(logLevel) {
    addLogSink(this);
}

PhoneJournal::~PhoneJournal() {
    removeLogSink(this);
}

void PhoneJournal::transferFinished(const HttpTransferRecord& record) {
    nlohmann::json headers = nlohmann::json::array();
    for (const auto& header : record.responseHeaders.getAllHeaders()) {
        headers.push_back({header.first, header.second});
    }
    nlohmann::json entry = {{"time", static_cast<long>(std::time(nullptr))},
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
                            {"error", record.errorDetail}};
    std::lock_guard<std::mutex> lock(mMutex);
    entry["sequence"] = mNextSequence++;
    keepNewest(mRequests, std::move(entry), kMaxRequests);
}

void PhoneJournal::receive(const LogEntry& entry) {
    nlohmann::json line = {{"time", entry.time},   {"thread", entry.thread},     {"module", entry.module},
                           {"level", entry.level}, {"source", entry.sourcePath}, {"line", entry.line},
                           {"text", entry.text}};
    std::lock_guard<std::mutex> lock(mMutex);
    line["sequence"] = mNextSequence++;
    keepNewest(mLogLines, std::move(line), kMaxLogLines);
}

nlohmann::json PhoneJournal::requests(std::uint64_t after) const {
    nlohmann::json result = nlohmann::json::array();
    std::lock_guard<std::mutex> lock(mMutex);
    for (const nlohmann::json& entry : mRequests) {
        if (entry["sequence"].get<std::uint64_t>() > after) {
            result.push_back(entry);
        }
    }
    return result;
}

nlohmann::json PhoneJournal::logLines(std::uint64_t after, const std::string& module, int maxLevel) const {
    nlohmann::json result = nlohmann::json::array();
    std::lock_guard<std::mutex> lock(mMutex);
    for (const nlohmann::json& line : mLogLines) {
        if (line["sequence"].get<std::uint64_t>() > after && line["level"].get<int>() <= maxLevel &&
            (module.empty() || line["module"] == module)) {
            result.push_back(line);
        }
    }
    return result;
}
