// The emulated phone's phone book, filled by the host from a file or entry by entry.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "directory/DirectoryServiceIfc.h"

class DirectoryService : public DirectoryServiceIfc {
public:
    bool findByNumber(const std::string& number, DirectoryRecord& record) override;

    // Adds or replaces the entry of its number. False for a number without digits or a number
    // type outside 1..4.
    bool addEntry(const DirectoryRecord& record);
    // Adds the entries of a file with one entry per line: number;first name;surname;number
    // type;picture file. '#' starts a comment line; the picture may be left out. Bad lines are
    // listed as "<file>:<line>: <what>" and skipped; false when any line was bad or the file
    // could not be read.
    bool loadFile(const std::string& path, std::vector<std::string>& problems);
    std::size_t size() const;

    // The number with the ignored separators taken out.
    static std::string normalise(const std::string& number);

private:
    mutable std::mutex mMutex;
    std::map<std::string, DirectoryRecord> mEntries;
};
