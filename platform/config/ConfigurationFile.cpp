// Reading and writing the configuration database as a plain key=value file.
#include "config/ConfigurationFile.h"

#include <cstdio>
#include <fstream>
#include <map>

namespace {
const char* const kBlanks = " \t\r";

std::string trim(const std::string& text) {
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) {
        return "";
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string problemAt(const std::string& name, int line, const std::string& what) {
    return name + ":" + std::to_string(line) + ": " + what;
}
} // namespace

void ConfigurationFile::parse(std::istream& in, const std::string& name, std::vector<Entry>& entries,
                              std::vector<std::string>& problems, const KeyCheck& isKnownKey) {
    std::map<std::string, int> firstLineOfKey;
    std::string text;
    for (int line = 1; std::getline(in, text); ++line) {
        const std::string content = trim(text);
        if (content.empty() || content[0] == '#') {
            continue;
        }
        const size_t equals = content.find('=');
        if (equals == std::string::npos) {
            problems.push_back(problemAt(name, line, "expected key=value"));
            continue;
        }
        Entry entry{trim(content.substr(0, equals)), trim(content.substr(equals + 1)), line};
        if (entry.key.empty()) {
            problems.push_back(problemAt(name, line, "empty key"));
        } else if (entry.key.find_first_of(kBlanks) != std::string::npos) {
            problems.push_back(problemAt(name, line, "blank inside key '" + entry.key + "'"));
        } else if (isKnownKey && !isKnownKey(entry.key)) {
            problems.push_back(problemAt(name, line, "unknown key '" + entry.key + "'"));
        } else if (firstLineOfKey.count(entry.key) != 0) {
            problems.push_back(problemAt(name, line,
                                         "key '" + entry.key + "' already set on line " +
                                             std::to_string(firstLineOfKey[entry.key])));
        } else {
            firstLineOfKey[entry.key] = line;
            entries.push_back(entry);
        }
    }
}

bool ConfigurationFile::read(const std::string& path, std::vector<Entry>& entries,
                             std::vector<std::string>& problems, const KeyCheck& isKnownKey) {
    std::ifstream in(path);
    if (!in) {
        problems.push_back(path + ": cannot be opened");
        return false;
    }
    parse(in, path, entries, problems, isKnownKey);
    return true;
}

bool ConfigurationFile::write(const std::string& path, const std::map<std::string, std::string>& values,
                              std::string& problem) {
    const std::string temporary = path + ".tmp";
    {
        std::ofstream out(temporary, std::ios::trunc);
        if (!out) {
            problem = temporary + ": cannot be written";
            return false;
        }
        out << "# Phone configuration: one key=value per line.\n";
        for (const auto& value : values) {
            out << value.first << '=' << value.second << '\n';
        }
        out.flush();
        if (!out) {
            problem = temporary + ": write failed";
            std::remove(temporary.c_str());
            return false;
        }
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        problem = path + ": cannot be replaced";
        std::remove(temporary.c_str());
        return false;
    }
    return true;
}

bool ConfigurationFile::isStorable(const std::string& key, const std::string& value) {
    return !key.empty() && key[0] != '#' && key.find_first_of(" \t\r\n=") == std::string::npos &&
           value.find_first_of("\r\n") == std::string::npos && trim(value) == value;
}
