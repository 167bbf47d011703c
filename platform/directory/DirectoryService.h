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

    static constexpr std::size_t MAX_ENTRIES = 5000;
    static constexpr std::size_t MAX_FIELD_LENGTH = 128;
    static constexpr std::size_t MAX_FILE_SIZE = 1024 * 1024;

    // Adds or replaces the entry of its number. False for a number without digits or with
    // characters other than digits, + * # and the ignored separators, a number type outside
    // 1..4, or a full phone book.
    bool addEntry(const DirectoryRecord& record);
    bool removeEntry(const std::string& number);
    // Adds the entries of a CSV file, one contact number a line:
    //   number,first name,surname,type[,picture]
    // type private, business, business2 or mobile (or 1..4); the picture is a file name in the
    // phone's picture folder. A first field "number" marks the header line, '#' a comment line;
    // fields may be quoted ("Young, Jr."). Bad lines are listed as "<file>:<line>: <what>" and
    // skipped; false when any line was bad or the file could not be read.
    bool loadFile(const std::string& path, std::vector<std::string>& problems);
    std::size_t size() const;
    // Every entry, ordered by number.
    std::vector<DirectoryRecord> entries() const;

    // The number type of a name or digit ("mobile", "4"); 0 for neither.
    static int numberType(const std::string& text);
    static const char* numberTypeName(int type);

    // The number with the ignored separators taken out.
    static std::string normalise(const std::string& number);

private:
    mutable std::mutex mMutex;
    std::map<std::string, DirectoryRecord> mEntries;
};
