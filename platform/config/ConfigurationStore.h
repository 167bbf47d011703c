// The phone's configuration database, kept in memory and in a key=value file.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "config/LocalMgmtIfc.h"
#include "events/LoopTasks.h"

// Subscribers are told about changes on the event loop, one notification per observer and
// change, holding every changed key that observer subscribed to. Setting a key to the value it
// already has is no change.
class ConfigurationStore : public LocalMgmtIfc {
public:
    using Values = std::map<std::string, std::string>;

    explicit ConfigurationStore(EventLoop& loop);
    ~ConfigurationStore() override;

    bool read(ManageableData& query) override;
    bool subscribe(const std::string& key, MgmtAgentIfc* observer, int mode) override;
    bool unsubscribe(const std::string& key, MgmtAgentIfc* observer, int mode) override;

    // Host side.
    // Replaces the whole contents with the file's. With `knownKeysOnly`, keys that are not part
    // of the phone's configuration are problems too. On any problem nothing changes and the
    // result is false; every problem is logged and listed as "<file>:<line>: <what>".
    bool loadFile(const std::string& path, std::vector<std::string>& problems, bool knownKeysOnly = true);
    bool saveFile(const std::string& path, std::string& problem) const;
    // "" for a key without value.
    std::string getValue(const std::string& key) const;
    Values getValues() const;
    // False, changing nothing, when a key or value would not survive the file (see
    // ConfigurationFile::isStorable). An empty value removes the key.
    bool setValue(const std::string& key, const std::string& value);
    bool setValues(const std::vector<std::pair<std::string, std::string>>& changes);

private:
    // Applies the changes and returns the keys whose value really changed, in order.
    std::vector<std::string> applyLocked(const std::vector<std::pair<std::string, std::string>>& changes);
    void notify(const std::vector<std::string>& changedKeys);
    void deliver(MgmtAgentIfc* observer, const std::vector<std::pair<std::string, std::string>>& changes);

    mutable std::mutex mMutex;
    Values mValues;
    std::map<std::string, std::set<MgmtAgentIfc*>> mSubscribers;
    LoopTasks mTasks;
};
