// The emulated phone's phone book.
#include "directory/DirectoryService.h"

#include <cctype>
#include <fstream>
#include <sstream>

#include "logging/Log.h"
#include "util/ClientUtils.h"

namespace {
const char* const kModule = "DirectoryService";
const char* const kSource = "./platform/directory/DirectoryService.cpp";

std::string trim(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) {
        return "";
    }
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::string> splitFields(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream in(line);
    std::string field;
    while (std::getline(in, field, ';')) {
        fields.push_back(trim(field));
    }
    return fields;
}

// Builds a record from the fields of a line; returns what is wrong, or "" when it is fine.
std::string recordFromFields(const std::vector<std::string>& fields, DirectoryRecord& record) {
    if (fields.size() < 4 || fields.size() > 5) {
        return "expected number;first name;surname;number type[;picture]";
    }
    unsigned short type = 0;
    if (!ClientUtils::stringToUnsignedShort(fields[3], type) || type < DirectoryRecord::Private ||
        type > DirectoryRecord::Mobile) {
        return "number type must be 1, 2, 3 or 4";
    }
    record.number = fields[0];
    record.firstName = fields[1];
    record.surname = fields[2];
    record.numberType = type;
    record.pictureFileName = fields.size() == 5 ? fields[4] : "";
    return "";
}
} // namespace

std::string DirectoryService::normalise(const std::string& number) {
    std::string result;
    for (char c : number) {
        if (std::string(" \t-/().").find(c) == std::string::npos) {
            result += c;
        }
    }
    return result;
}

bool DirectoryService::findByNumber(const std::string& number, DirectoryRecord& record) {
    const std::string key = normalise(number);
    std::lock_guard<std::mutex> lock(mMutex);
    auto found = mEntries.find(key);
    if (key.empty() || found == mEntries.end()) {
        return false;
    }
    record = found->second;
    return true;
}

bool DirectoryService::addEntry(const DirectoryRecord& record) {
    const std::string key = normalise(record.number);
    bool hasDigit = false;
    for (char c : key) {
        hasDigit = hasDigit || std::isdigit(static_cast<unsigned char>(c));
    }
    if (!hasDigit || record.numberType < DirectoryRecord::Private ||
        record.numberType > DirectoryRecord::Mobile) {
        return false;
    }
    std::lock_guard<std::mutex> lock(mMutex);
    mEntries[key] = record;
    return true;
}

bool DirectoryService::loadFile(const std::string& path, std::vector<std::string>& problems) {
    std::ifstream in(path);
    if (!in) {
        problems.push_back(path + ": cannot be opened");
        return false;
    }
    bool allGood = true;
    std::string text;
    for (int line = 1; std::getline(in, text); ++line) {
        const std::string content = trim(text);
        if (content.empty() || content[0] == '#') {
            continue;
        }
        DirectoryRecord record;
        std::string what = recordFromFields(splitFields(content), record);
        if (what.empty() && !addEntry(record)) {
            what = "number without digits";
        }
        if (!what.empty()) {
            problems.push_back(path + ":" + std::to_string(line) + ": " + what);
            if (loggingOnAppUni(kModule, 2)) {
                logAppUni(kModule, kSource, 2, __LINE__, "%s", problems.back().c_str());
            }
            allGood = false;
        }
    }
    return allGood;
}

std::size_t DirectoryService::size() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mEntries.size();
}
