// What the phone did, kept for the control API and the web page: requests, pushes and log lines.
#pragma once

#include <deque>
#include <mutex>
#include <nlohmann/json.hpp>

#include "ChangeSignal.h"
#include "http/HttpTrafficObserver.h"
#include "logging/LogSink.h"

// Keeps the newest entries of each kind (older ones are dropped) and numbers them, so that a
// reader can ask for what came after the last entry it saw.
class PhoneJournal : public HttpTrafficObserver, public LogSink {
public:
    static constexpr size_t kMaxRequests = 500;
    static constexpr size_t kMaxLogLines = 2000;
    static constexpr size_t kMaxPushes = 200;

    explicit PhoneJournal(int logLevel = 6);
    ~PhoneJournal() override;

    void transferFinished(const HttpTransferRecord& record) override;
    int maximumLevel() const override { return mLogLevel; }
    void receive(const LogEntry& entry) override;

    // A push that reached the phone (`via` says how) and what the phonelet answered.
    void pushReceived(const std::string& via, const std::string& data, const std::string& application,
                      int type, int result);

    // Every entry kind shares one sequence; news moves with each new entry of any kind, and
    // with every change of the display the phone reports here.
    const ChangeSignal& news() const { return mNews; }
    void screenChanged() { mNews.notify(); }

    // Requests after sequence number `after`, oldest first.
    nlohmann::json requests(std::uint64_t after) const;
    // Log lines after `after`, of `module` ("" for all) at `maxLevel` or below.
    nlohmann::json logLines(std::uint64_t after, const std::string& module, int maxLevel) const;
    // Pushes after `after`, oldest first.
    nlohmann::json pushes(std::uint64_t after) const;
    // The sequence number of the newest entry of any kind.
    std::uint64_t lastSequence() const;

private:
    void keep(std::deque<nlohmann::json>& entries, nlohmann::json entry, size_t limit);

    const int mLogLevel;
    mutable std::mutex mMutex;
    std::uint64_t mNextSequence = 1;
    std::deque<nlohmann::json> mRequests;
    std::deque<nlohmann::json> mLogLines;
    std::deque<nlohmann::json> mPushes;
    ChangeSignal mNews;
};
