// A query to, or an answer from, the phone's configuration database: root ids with values.
#pragma once

#include <string>
#include <utility>
#include <vector>

// Root ids are configuration keys ("app-name-3", "ipaddress"). A caller adds the root ids it
// wants and hands the record to LocalMgmtIfc::read, which fills in every value ("" for a key
// without value). Change notifications arrive as records of the same kind.
class ManageableData {
public:
    ManageableData() = default;

    // Adds a root id; a root id already in the record keeps its place. `instance` would select
    // one instance of a managed object that has several; the configuration database holds
    // single values only, so it is ignored (callers pass null).
    void addRootId(const std::string& rootId, void* instance = nullptr);
    // Replaces the contents of `rootIds` with the record's root ids, in the order they were
    // added or, for an answer, in the order the database gave them.
    void getRootIds(std::vector<std::string>& rootIds) const;
    // Reads the value of a root id. `key` names the attribute of the managed object: "" or the
    // root id itself (or "value") mean the root id's own value, the only attribute a
    // configuration key has. Returns false, with `value` "", for a root id not in the record
    // or another attribute.
    bool interogate(const std::string& rootId, const std::string& key, std::string& value) const;

    // Database side: sets the value of a root id, adding the root id when missing.
    void setValue(const std::string& rootId, const std::string& value);
    bool empty() const { return mEntries.empty(); }

private:
    std::vector<std::pair<std::string, std::string>> mEntries;
};
