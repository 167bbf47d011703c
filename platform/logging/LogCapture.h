// Collects log entries in memory while it exists, so that tests can check exact log texts.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "logging/LogSink.h"

class LogCapture : public LogSink {
public:
    explicit LogCapture(int maximumLevel = 6);
    ~LogCapture() override;

    int maximumLevel() const override { return mMaximumLevel; }
    void receive(const LogEntry& entry) override;

    std::vector<LogEntry> entries() const;
    // Texts logged by one module, in order.
    std::vector<std::string> texts(const std::string& module) const;
    // Whether a module logged exactly this text at this level.
    bool contains(const std::string& module, int level, const std::string& text) const;
    void clear();

private:
    const int mMaximumLevel;
    mutable std::mutex mMutex;
    std::vector<LogEntry> mEntries;
};
