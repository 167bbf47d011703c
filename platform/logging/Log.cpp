// Platform logging: configuration from AGP_LOG, formatting, standard error and the sinks.
#include "logging/Log.h"

#include <pthread.h>
#include <sys/time.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <mutex>
#include <sstream>
#include <vector>

#include "logging/LogSink.h"

namespace {

const int kDefaultLevel = 2;

struct LevelConfig {
    int otherModules = kDefaultLevel;
    std::map<std::string, int, std::less<>> perModule;

    int levelFor(const char* module) const {
        if (perModule.empty()) {
            return otherModules;
        }
        auto found = perModule.find(module);
        return found == perModule.end() ? otherModules : found->second;
    }
};

bool parseLevel(const std::string& text, int& level) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos || text.size() > 3) {
        return false;
    }
    level = std::stoi(text);
    return true;
}

// Reads AGP_LOG once. A malformed entry is reported on standard error and ignored.
LevelConfig readLevelConfig() {
    LevelConfig config;
    const char* value = std::getenv("AGP_LOG");
    if (value == nullptr) {
        return config;
    }
    std::stringstream entries(value);
    std::string entry;
    while (std::getline(entries, entry, ',')) {
        const auto colon = entry.find(':');
        const std::string module = colon == std::string::npos ? "*" : entry.substr(0, colon);
        const std::string levelText = colon == std::string::npos ? entry : entry.substr(colon + 1);
        int level = 0;
        if (module.empty() || !parseLevel(levelText, level)) {
            std::fprintf(stderr,
                         "AGP_LOG: ignoring '%s': expected LEVEL or MODULE:LEVEL, e.g. AGPXMLParser:6,*:2\n",
                         entry.c_str());
            continue;
        }
        if (module == "*") {
            config.otherModules = level;
        } else {
            config.perModule[module] = level;
        }
    }
    return config;
}

const LevelConfig& levelConfig() {
    static const LevelConfig config = readLevelConfig();
    return config;
}

std::mutex gSinkMutex;
std::vector<LogSink*> gSinks;
std::atomic<int> gHighestSinkLevel{-1};

void recomputeHighestSinkLevel() {
    int highest = -1;
    for (const LogSink* sink : gSinks) {
        highest = std::max(highest, sink->maximumLevel());
    }
    gHighestSinkLevel = highest;
}

// Reading a thread's name costs a system call (a file read under /proc), so each thread reads its
// own once; threads that the platform names set it here as they name themselves.
thread_local std::string tThreadName;

const std::string& currentThreadName() {
    if (tThreadName.empty()) {
        char name[32] = {0};
        tThreadName =
            pthread_getname_np(pthread_self(), name, sizeof name) != 0 || name[0] == '\0' ? "?" : name;
    }
    return tThreadName;
}

// The date and time of day change once a second; each thread keeps the text of its last second.
thread_local time_t tLastSecond = -1;
thread_local char tSecondText[32];
thread_local size_t tSecondLength = 0;

std::string currentTime() {
    timeval now{};
    gettimeofday(&now, nullptr);
    if (now.tv_sec != tLastSecond) {
        tm local{};
        localtime_r(&now.tv_sec, &local);
        tSecondLength = std::strftime(tSecondText, sizeof tSecondText, "%Y-%m-%d %H:%M:%S", &local);
        tLastSecond = now.tv_sec;
    }
    char text[48];
    std::memcpy(text, tSecondText, tSecondLength);
    const int length = std::snprintf(text + tSecondLength, sizeof text - tSecondLength, ".%03ld",
                                     static_cast<long>(now.tv_usec / 1000));
    return std::string(text, tSecondLength + static_cast<size_t>(std::max(length, 0)));
}

std::string formatText(const char* format, va_list arguments) {
    va_list copy;
    va_copy(copy, arguments);
    char small[256];
    const int length = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (length < 0) {
        return format;
    }
    if (static_cast<size_t>(length) < sizeof small) {
        return std::string(small, static_cast<size_t>(length));
    }
    std::string text(static_cast<size_t>(length) + 1, '\0');
    std::vsnprintf(&text[0], text.size(), format, arguments);
    text.resize(static_cast<size_t>(length));
    return text;
}

void writeToStandardError(const LogEntry& entry) {
    std::string text = entry.text;
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    std::fprintf(stderr, "%s [%s] %s %d %s:%d %s\n", entry.time.c_str(), entry.thread.c_str(),
                 entry.module.c_str(), entry.level, entry.sourcePath.c_str(), entry.line, text.c_str());
}

} // namespace

bool loggingOnAppUni(const char* module, int level) {
    return level <= gHighestSinkLevel.load(std::memory_order_relaxed) ||
           level <= levelConfig().levelFor(module);
}

void logAppUni(const char* module, const char* sourcePath, int level, int line, const char* format, ...) {
    const bool toStandardError = level <= levelConfig().levelFor(module);
    if (!toStandardError && level > gHighestSinkLevel.load(std::memory_order_relaxed)) {
        return;
    }
    LogEntry entry;
    entry.module = module;
    entry.sourcePath = sourcePath;
    entry.level = level;
    entry.line = line;
    entry.thread = currentThreadName();
    entry.time = currentTime();
    va_list arguments;
    va_start(arguments, format);
    entry.text = formatText(format, arguments);
    va_end(arguments);

    if (toStandardError) {
        writeToStandardError(entry);
    }
    std::lock_guard<std::mutex> lock(gSinkMutex);
    for (LogSink* sink : gSinks) {
        if (level <= sink->maximumLevel()) {
            sink->receive(entry);
        }
    }
}

void setLogThreadName(const std::string& name) {
    tThreadName = name.substr(0, 15);
}

int highestConfiguredLogLevel() {
    int highest = levelConfig().otherModules;
    for (const auto& module : levelConfig().perModule) {
        highest = std::max(highest, module.second);
    }
    return highest;
}

void logSinkLevelsChanged() {
    std::lock_guard<std::mutex> lock(gSinkMutex);
    recomputeHighestSinkLevel();
}

void addLogSink(LogSink* sink) {
    std::lock_guard<std::mutex> lock(gSinkMutex);
    gSinks.push_back(sink);
    recomputeHighestSinkLevel();
}

void removeLogSink(LogSink* sink) {
    std::lock_guard<std::mutex> lock(gSinkMutex);
    gSinks.erase(std::remove(gSinks.begin(), gSinks.end(), sink), gSinks.end());
    recomputeHighestSinkLevel();
}
