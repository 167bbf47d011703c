// A query to, or an answer from, the phone's configuration database.
#include "config/ManageableData.h"

#include <algorithm>

namespace {
template <typename Entries> auto findEntry(Entries& entries, const std::string& rootId) {
    return std::find_if(entries.begin(), entries.end(),
                        [&](const auto& entry) { return entry.first == rootId; });
}
} // namespace

void ManageableData::addRootId(const std::string& rootId, void*) {
    if (findEntry(mEntries, rootId) == mEntries.end()) {
        mEntries.emplace_back(rootId, std::string());
    }
}

void ManageableData::getRootIds(std::vector<std::string>& rootIds) const {
    rootIds.clear();
    for (const auto& entry : mEntries) {
        rootIds.push_back(entry.first);
    }
}

bool ManageableData::interogate(const std::string& rootId, const std::string& key, std::string& value) const {
    value.clear();
    if (!key.empty() && key != rootId && key != "value") {
        return false;
    }
    auto found = findEntry(mEntries, rootId);
    if (found == mEntries.end()) {
        return false;
    }
    value = found->second;
    return true;
}

void ManageableData::setValue(const std::string& rootId, const std::string& value) {
    auto found = findEntry(mEntries, rootId);
    if (found == mEntries.end()) {
        mEntries.emplace_back(rootId, value);
    } else {
        found->second = value;
    }
}
