// The phone's configuration database.
#include "config/ConfigurationStore.h"

#include "config/ConfigurationFile.h"
#include "config/ConfigurationKeys.h"
#include "config/ManageableData.h"
#include "config/MgmtAgentIfc.h"
#include "logging/Log.h"

namespace {
const char* const kModule = "ConfigurationStore";
const char* const kSource = "./platform/config/ConfigurationStore.cpp";

void logProblem(const std::string& problem) {
    if (loggingOnAppUni(kModule, 2)) {
        logAppUni(kModule, kSource, 2, __LINE__, "%s", problem.c_str());
    }
}
} // namespace

ConfigurationStore::ConfigurationStore(EventLoop& loop) : mTasks(loop) {}

ConfigurationStore::~ConfigurationStore() {
    mTasks.close();
}

bool ConfigurationStore::read(ManageableData& query) {
    std::vector<std::string> rootIds;
    query.getRootIds(rootIds);
    std::lock_guard<std::mutex> lock(mMutex);
    for (const std::string& rootId : rootIds) {
        auto found = mValues.find(rootId);
        query.setValue(rootId, found == mValues.end() ? std::string() : found->second);
    }
    return true;
}

bool ConfigurationStore::subscribe(const std::string& key, MgmtAgentIfc* observer, int mode) {
    if (key.empty() || observer == nullptr || mode != NOTIFY_ON_CHANGE) {
        logProblem("subscribe refused for key [" + key + "] and mode " + std::to_string(mode));
        return false;
    }
    std::lock_guard<std::mutex> lock(mMutex);
    mSubscribers[key].insert(observer);
    return true;
}

bool ConfigurationStore::unsubscribe(const std::string& key, MgmtAgentIfc* observer, int mode) {
    if (mode != NOTIFY_ON_CHANGE) {
        return false;
    }
    std::lock_guard<std::mutex> lock(mMutex);
    auto found = mSubscribers.find(key);
    if (found == mSubscribers.end() || found->second.erase(observer) == 0) {
        return false;
    }
    if (found->second.empty()) {
        mSubscribers.erase(found);
    }
    return true;
}

bool ConfigurationStore::loadFile(const std::string& path, std::vector<std::string>& problems,
                                  bool knownKeysOnly) {
    const size_t problemsBefore = problems.size();
    std::vector<ConfigurationFile::Entry> entries;
    ConfigurationFile::read(path, entries, problems,
                            knownKeysOnly ? ConfigurationFile::KeyCheck(ConfigurationKeys::isKnown)
                                          : nullptr);
    Values loaded;
    for (const ConfigurationFile::Entry& entry : entries) {
        if (!entry.value.empty()) {
            loaded[entry.key] = entry.value;
        }
    }
    if (problems.size() != problemsBefore) {
        for (size_t i = problemsBefore; i < problems.size(); ++i) {
            logProblem(problems[i]);
        }
        return false;
    }
    std::vector<std::pair<std::string, std::string>> changes(loaded.begin(), loaded.end());
    std::vector<std::string> changed;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const auto& old : mValues) {
            if (loaded.count(old.first) == 0) {
                changes.emplace_back(old.first, "");
            }
        }
        changed = applyLocked(changes);
    }
    notify(changed);
    return true;
}

bool ConfigurationStore::saveFile(const std::string& path, std::string& problem) const {
    const Values values = getValues();
    if (!ConfigurationFile::write(path, values, problem)) {
        logProblem(problem);
        return false;
    }
    return true;
}

std::string ConfigurationStore::getValue(const std::string& key) const {
    std::lock_guard<std::mutex> lock(mMutex);
    auto found = mValues.find(key);
    return found == mValues.end() ? std::string() : found->second;
}

ConfigurationStore::Values ConfigurationStore::getValues() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mValues;
}

bool ConfigurationStore::setValue(const std::string& key, const std::string& value) {
    return setValues({{key, value}});
}

bool ConfigurationStore::setValues(const std::vector<std::pair<std::string, std::string>>& changes) {
    for (const auto& change : changes) {
        if (!ConfigurationFile::isStorable(change.first, change.second)) {
            logProblem("setValue refused for key [" + change.first + "]");
            return false;
        }
    }
    std::vector<std::string> changed;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        changed = applyLocked(changes);
    }
    notify(changed);
    return true;
}

std::vector<std::string>
ConfigurationStore::applyLocked(const std::vector<std::pair<std::string, std::string>>& changes) {
    std::vector<std::string> changed;
    for (const auto& change : changes) {
        auto found = mValues.find(change.first);
        const std::string old = found == mValues.end() ? std::string() : found->second;
        if (old == change.second) {
            continue;
        }
        if (change.second.empty()) {
            mValues.erase(found);
        } else {
            mValues[change.first] = change.second;
        }
        changed.push_back(change.first);
    }
    return changed;
}

void ConfigurationStore::notify(const std::vector<std::string>& changedKeys) {
    // Values are taken now, so each notification shows the change that caused it even when a
    // later change arrives before it is delivered.
    std::map<MgmtAgentIfc*, std::vector<std::pair<std::string, std::string>>> perObserver;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const std::string& key : changedKeys) {
            auto subscribers = mSubscribers.find(key);
            if (subscribers == mSubscribers.end()) {
                continue;
            }
            auto value = mValues.find(key);
            for (MgmtAgentIfc* observer : subscribers->second) {
                perObserver[observer].emplace_back(key,
                                                   value == mValues.end() ? std::string() : value->second);
            }
        }
    }
    for (auto& entry : perObserver) {
        mTasks.post([this, observer = entry.first, changes = std::move(entry.second)] {
            deliver(observer, changes);
        });
    }
}

void ConfigurationStore::deliver(MgmtAgentIfc* observer,
                                 const std::vector<std::pair<std::string, std::string>>& changes) {
    ManageableData data;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const auto& change : changes) {
            auto subscribers = mSubscribers.find(change.first);
            if (subscribers != mSubscribers.end() && subscribers->second.count(observer) != 0) {
                data.setValue(change.first, change.second);
            }
        }
    }
    if (!data.empty()) {
        observer->manageableDataChanged(data);
    }
}
