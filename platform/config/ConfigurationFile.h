// Reading and writing the configuration database as a plain key=value file.
#pragma once

#include <functional>
#include <istream>
#include <map>
#include <string>
#include <vector>

// One "key=value" per line. Lines whose first non-blank character is '#' are comments; blank
// lines are allowed. Blanks around key and value are dropped; a '#' after the '=' belongs to the
// value. Problems are texts of the form "<file>:<line>: <what>".
class ConfigurationFile {
public:
    struct Entry {
        std::string key;
        std::string value;
        int line = 0;
    };

    using KeyCheck = std::function<bool(const std::string& key)>;

    // Parses `in`, naming it `name` in problems. Malformed lines (no '=', empty key, blank
    // inside the key), repeated keys and, given a check, keys it refuses are reported in line
    // order and left out.
    static void parse(std::istream& in, const std::string& name, std::vector<Entry>& entries,
                      std::vector<std::string>& problems, const KeyCheck& isKnownKey = nullptr);
    // parse() on a file; false, with a problem, when it cannot be opened.
    static bool read(const std::string& path, std::vector<Entry>& entries, std::vector<std::string>& problems,
                     const KeyCheck& isKnownKey = nullptr);
    // Writes the values sorted by key, through a temporary file renamed over `path`, so a
    // failed write leaves the old file. False with `problem` set on failure.
    static bool write(const std::string& path, const std::map<std::string, std::string>& values,
                      std::string& problem);
    // Whether a key and value survive a write and a read unchanged.
    static bool isStorable(const std::string& key, const std::string& value);
};
