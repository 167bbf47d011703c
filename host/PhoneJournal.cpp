// What the phone did, kept for the control API and the web page: requests, pushes and log lines.
#include "PhoneJournal.h"

#include "logging/Log.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <iterator>

namespace {

using Json = nlohmann::json;

// Invalid sequences are dropped by one handler and replaced by the other, so only valid UTF-8
// dumps the same both ways.
bool isUtf8(const std::string& bytes) {
    const Json text(bytes);
    return text.dump(-1, ' ', false, Json::error_handler_t::ignore) ==
           text.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Each byte as the character of the same number: readable for Latin-1 text, and the bytes come
// back exactly by encoding the text as Latin-1 again.
std::string latin1ToUtf8(const std::string& bytes) {
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const unsigned char byte : bytes) {
        if (byte < 0x80) {
            text += static_cast<char>(byte);
        } else {
            text += static_cast<char>(0xC0 | (byte >> 6));
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

// Entries hold only valid UTF-8, so that every answer can be written as JSON. Bytes that are not
// UTF-8 (a document in another charset, a push in Latin-1) are kept faithfully as Latin-1 text,
// and `NAMEEncoding` says so.
std::string asText(const std::string& bytes, bool& converted) {
    if (isUtf8(bytes)) {
        return bytes;
    }
    converted = true;
    return latin1ToUtf8(bytes);
}

void putBytes(Json& entry, const std::string& name, const std::string& bytes) {
    bool converted = false;
    entry[name] = asText(bytes, converted);
    if (converted) {
        entry[name + "Encoding"] = "latin1";
    }
}

long millisecondsSinceEpoch() {
    return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                 std::chrono::system_clock::now().time_since_epoch())
                                 .count());
}

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

nlohmann::json logLineAsJson(std::uint64_t sequence, const LogEntry& entry) {
    Json line = {{"time", entry.time},   {"thread", entry.thread},     {"module", entry.module},
                 {"level", entry.level}, {"source", entry.sourcePath}, {"line", entry.line},
                 {"sequence", sequence}};
    putBytes(line, "text", entry.text);
    return line;
}

size_t bodyBytes(const nlohmann::json& request) {
    const auto body = request.find("body");
    return body != request.end() && body->is_string() ? body->get_ref<const std::string&>().size() : 0;
}

} // namespace

PhoneJournal::PhoneJournal(int logLevel) : mLogLevel(std::min(std::max(logLevel, 0), kMostDetailedLevel)) {
    addLogSink(this);
}

int PhoneJournal::defaultLogLevel() {
    return std::max(kDefaultLogLevel, highestConfiguredLogLevel());
}

void PhoneJournal::setLogLevel(int level) {
    mLogLevel = std::min(std::max(level, 0), kMostDetailedLevel);
    logSinkLevelsChanged();
}

PhoneJournal::~PhoneJournal() {
    removeLogSink(this);
}

void PhoneJournal::keep(std::deque<nlohmann::json>& entries, nlohmann::json entry, size_t limit) {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        entry["sequence"] = mNextSequence++;
        const bool request = &entries == &mRequests;
        mRequestBodyBytes += request ? bodyBytes(entry) : 0;
        entries.push_back(std::move(entry));
        while (entries.size() > limit) {
            mRequestBodyBytes -= request ? bodyBytes(entries.front()) : 0;
            entries.pop_front();
        }
        dropOldBodies();
    }
    mNews.notify();
}

void PhoneJournal::dropOldBodies() {
    for (auto request = mRequests.begin();
         request != mRequests.end() && mRequestBodyBytes > kMaxRequestBodyBytes; ++request) {
        const size_t bytes = bodyBytes(*request);
        if (bytes > 0) {
            mRequestBodyBytes -= bytes;
            (*request)["body"] = "";
            (*request)["bodyDropped"] = true;
            request->erase("bodyEncoding");
        }
    }
}

void PhoneJournal::transferFinished(const HttpTransferRecord& record) {
    Json headers = Json::array();
    bool headersConverted = false;
    for (const auto& header : record.responseHeaders.getAllHeaders()) {
        headers.push_back({asText(header.first, headersConverted), asText(header.second, headersConverted)});
    }
    Json entry = {{"time", static_cast<long>(std::time(nullptr))},
                  {"timeMs", millisecondsSinceEpoch()},
                  {"method", record.method},
                  {"redirections", record.redirections},
                  {"success", record.success},
                  {"connectionStatus", record.connectionStatus},
                  {"httpStatus", record.httpStatus},
                  {"headers", headers},
                  {"bodySize", record.bodySize},
                  {"bodyTruncated", record.bodyTruncated},
                  {"durationMs", record.durationMs}};
    putBytes(entry, "url", record.requestedUrl);
    putBytes(entry, "finalUrl", record.finalUrl);
    putBytes(entry, "body", record.body);
    putBytes(entry, "requestBody", record.requestBody);
    putBytes(entry, "error", record.errorDetail);
    if (headersConverted) {
        entry["headersEncoding"] = "latin1";
    }
    keep(mRequests, std::move(entry), kMaxRequests);
}

void PhoneJournal::receive(const LogEntry& entry) {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mLogLines.push_back({mNextSequence++, entry});
        if (mLogLines.size() > kMaxLogLines) {
            mLogLines.pop_front();
        }
    }
    mNews.notify();
}

void PhoneJournal::pushReceived(const std::string& via, const std::string& data,
                                const std::string& application, int type, int result) {
    Json push = {{"time", static_cast<long>(std::time(nullptr))},
                 {"timeMs", millisecondsSinceEpoch()},
                 {"via", via},
                 {"type", type},
                 {"accepted", result == 1}};
    putBytes(push, "application", application);
    putBytes(push, "data", data);
    keep(mPushes, std::move(push), kMaxPushes);
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
    auto line = mLogLines.end();
    while (line != mLogLines.begin() && std::prev(line)->sequence > after) {
        --line;
    }
    for (; line != mLogLines.end(); ++line) {
        if (line->entry.level <= maxLevel && (module.empty() || line->entry.module == module)) {
            result.push_back(logLineAsJson(line->sequence, line->entry));
        }
    }
    return result;
}

std::uint64_t PhoneJournal::lastSequence() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mNextSequence - 1;
}
