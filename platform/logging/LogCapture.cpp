// In-memory collection of log entries.
#include "logging/LogCapture.h"

LogCapture::LogCapture(int maximumLevel) : mMaximumLevel(maximumLevel) {
    addLogSink(this);
}

LogCapture::~LogCapture() {
    removeLogSink(this);
}

void LogCapture::receive(const LogEntry& entry) {
    std::lock_guard<std::mutex> lock(mMutex);
    mEntries.push_back(entry);
}

std::vector<LogEntry> LogCapture::entries() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mEntries;
}

std::vector<std::string> LogCapture::texts(const std::string& module) const {
    std::lock_guard<std::mutex> lock(mMutex);
    std::vector<std::string> result;
    for (const LogEntry& entry : mEntries) {
        if (entry.module == module) {
            result.push_back(entry.text);
        }
    }
    return result;
}

bool LogCapture::contains(const std::string& module, int level, const std::string& text) const {
    std::lock_guard<std::mutex> lock(mMutex);
    for (const LogEntry& entry : mEntries) {
        if (entry.module == module && entry.level == level && entry.text == text) {
            return true;
        }
    }
    return false;
}

void LogCapture::clear() {
    std::lock_guard<std::mutex> lock(mMutex);
    mEntries.clear();
}
