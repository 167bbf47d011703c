// Receivers of log entries besides standard error (test capture, the emulator's log panel).
#pragma once

#include <string>

struct LogEntry {
    std::string module;
    std::string sourcePath;
    int level = 0;
    int line = 0;
    std::string thread;
    std::string time; // local wall-clock time, "2026-11-23 09:30:00.123"
    std::string text; // the formatted text exactly as produced, trailing line feeds included
};

// A sink receives every entry up to its level, whatever AGP_LOG says for standard error.
// Entries arrive on the thread that logs; implementations guard their own state.
class LogSink {
public:
    virtual ~LogSink() = default;
    virtual int maximumLevel() const = 0;
    virtual void receive(const LogEntry& entry) = 0;
};

void addLogSink(LogSink* sink);
void removeLogSink(LogSink* sink);
// A sink whose maximumLevel() changed calls this, so that lines are formatted for it from now on
// (or no longer formatted for nobody).
void logSinkLevelsChanged();
