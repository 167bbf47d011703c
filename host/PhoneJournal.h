// What the phone did, kept for the control API and the web page: requests, pushes and log lines.
#pragma once

#include <atomic>
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
    // The bodies of the requests kept take at most this much together; the oldest give theirs up
    // first (their entries stay, with "bodyDropped").
    static constexpr size_t kMaxRequestBodyBytes = 8u << 20;

    // Log lines are kept up to a detail level: the normal trace, or more where AGP_LOG asks for
    // it. Every line kept costs its formatting, so the detailed trace (every element of every
    // document) is kept only while somebody asks for it (setLogLevel).
    static constexpr int kDefaultLogLevel = 5;
    static constexpr int kMostDetailedLevel = 6;

    explicit PhoneJournal(int logLevel = defaultLogLevel());
    ~PhoneJournal() override;

    static int defaultLogLevel();

    void transferFinished(const HttpTransferRecord& record) override;
    int maximumLevel() const override { return mLogLevel.load(std::memory_order_relaxed); }
    void receive(const LogEntry& entry) override;

    // The detail level of the log lines kept from now on, 0 to 6 (a higher one is taken as 6).
    void setLogLevel(int level);

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
    void dropOldBodies();

    // Log lines stay as they came and become JSON only when somebody reads them.
    struct KeptLine {
        std::uint64_t sequence;
        LogEntry entry;
    };

    std::atomic<int> mLogLevel;
    mutable std::mutex mMutex;
    std::uint64_t mNextSequence = 1;
    std::deque<nlohmann::json> mRequests;
    size_t mRequestBodyBytes = 0;
    std::deque<KeptLine> mLogLines;
    std::deque<nlohmann::json> mPushes;
    ChangeSignal mNews;
};
