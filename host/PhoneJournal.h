// What the phone did, kept for the control API and the web page: requests made and log lines.
#pragma once

#include <deque>
#include <mutex>
#include <nlohmann/json.hpp>

#include "http/HttpTrafficObserver.h"
#include "logging/LogSink.h"

// Keeps the newest entries of each kind (older ones are dropped) and numbers them, so that a
// reader can ask for what came after the last entry it saw.
class PhoneJournal : public HttpTrafficObserver, public LogSink {
public:
    static constexpr size_t kMaxRequests = 500;
    static constexpr size_t kMaxLogLines = 2000;

    explicit PhoneJournal(int logLevel = 6);
    ~PhoneJournal() override;

    void transferFinished(const HttpTransferRecord& record) override;
    int maximumLevel() const override { return mLogLevel; }
    void receive(const LogEntry& entry) override;

    // Requests after sequence number `after`, oldest first.
    nlohmann::json requests(std::uint64_t after) const;
    // Log lines after `after`, of `module` ("" for all) at `maxLevel` or below.
    nlohmann::json logLines(std::uint64_t after, const std::string& module, int maxLevel) const;

private:
    const int mLogLevel;
    mutable std::mutex mMutex;
    std::uint64_t mNextSequence = 1;
    std::deque<nlohmann::json> mRequests;
    std::deque<nlohmann::json> mLogLines;
};
