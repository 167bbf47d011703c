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

// Splits one CSV line: fields separated by commas, a field in double quotes may hold commas,
// and "" inside quotes stands for one quote. False for an unterminated quote.
bool splitCsv(const std::string& line, std::vector<std::string>& fields) {
    fields.clear();
    std::string field;
    bool quoted = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quoted) {
            if (c == '"' && i + 1 < line.size() && line[i + 1] == '"') {
                field += '"';
                ++i;
            } else if (c == '"') {
                quoted = false;
            } else {
                field += c;
            }
        } else if (c == '"') {
            quoted = true;
        } else if (c == ',') {
            fields.push_back(trim(field));
            field.clear();
        } else {
            field += c;
        }
    }
    fields.push_back(trim(field));
    return !quoted;
}

// Builds a record from the fields of a line; returns what is wrong, or "" when it is fine.
std::string recordFromFields(const std::vector<std::string>& fields, DirectoryRecord& record) {
    if (fields.size() < 4 || fields.size() > 5) {
        return "expected 4 or 5 fields (number,first name,surname,type[,picture]), found " +
               std::to_string(fields.size());
    }
    for (const std::string& field : fields) {
        if (field.size() > DirectoryService::MAX_FIELD_LENGTH) {
            return "a field is longer than " + std::to_string(DirectoryService::MAX_FIELD_LENGTH) +
                   " characters";
        }
    }
    const int type = DirectoryService::numberType(fields[3]);
    if (type == 0) {
        return "type must be private, business, business2 or mobile (or 1 to 4), not '" + fields[3] + "'";
    }
    if (fields.size() == 5 && fields[4].find('/') != std::string::npos) {
        return "the picture is a file name in the phone's picture folder, without '/'";
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
    if (!hasDigit || key.size() > MAX_FIELD_LENGTH || record.numberType < DirectoryRecord::Private ||
        record.numberType > DirectoryRecord::Mobile) {
        return false;
    }
    for (char c : key) {
        if (!std::isdigit(static_cast<unsigned char>(c)) && std::string("+*#").find(c) == std::string::npos) {
            return false;
        }
    }
    std::lock_guard<std::mutex> lock(mMutex);
    if (mEntries.size() >= MAX_ENTRIES && mEntries.count(key) == 0) {
        return false;
    }
    mEntries[key] = record;
    return true;
}

int DirectoryService::numberType(const std::string& text) {
    static const char* const kNames[] = {"private", "business", "business2", "mobile"};
    for (int type = DirectoryRecord::Private; type <= DirectoryRecord::Mobile; ++type) {
        if (text == kNames[type - 1] || text == std::to_string(type)) {
            return type;
        }
    }
    return 0;
}

const char* DirectoryService::numberTypeName(int type) {
    static const char* const kNames[] = {"private", "business", "business2", "mobile"};
    return type >= DirectoryRecord::Private && type <= DirectoryRecord::Mobile ? kNames[type - 1] : "";
}

bool DirectoryService::loadFile(const std::string& path, std::vector<std::string>& problems) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        problems.push_back(path + ": cannot be opened");
        return false;
    }
    const size_t before = problems.size();
    auto problem = [&](int line, const std::string& what) {
        problems.push_back(path + ":" + std::to_string(line) + ": " + what);
        if (loggingOnAppUni(kModule, 2)) {
            logAppUni(kModule, kSource, 2, __LINE__, "%s", problems.back().c_str());
        }
    };
    std::string text;
    std::size_t bytes = 0;
    std::vector<std::string> fields;
    for (int line = 1; std::getline(in, text); ++line) {
        bytes += text.size() + 1;
        if (bytes > MAX_FILE_SIZE || line > static_cast<int>(MAX_ENTRIES) + 100) {
            problem(line, "the phone book is too long (at most " + std::to_string(MAX_ENTRIES) + " entries)");
            break;
        }
        const std::string content = trim(text);
        if (content.empty() || content[0] == '#') {
            continue;
        }
        if (!splitCsv(content, fields)) {
            problem(line, "a quoted field is not closed");
            continue;
        }
        if (fields[0] == "number") {
            continue; // the header line
        }
        DirectoryRecord record;
        std::string what = recordFromFields(fields, record);
        if (what.empty() && !addEntry(record)) {
            what = size() >= MAX_ENTRIES ? "the phone book is full"
                                         : "'" + fields[0] + "' is not a phone number";
        }
        if (!what.empty()) {
            problem(line, what);
        }
    }
    return problems.size() == before;
}

bool DirectoryService::removeEntry(const std::string& number) {
    std::lock_guard<std::mutex> lock(mMutex);
    return mEntries.erase(normalise(number)) != 0;
}

std::vector<DirectoryRecord> DirectoryService::entries() const {
    std::lock_guard<std::mutex> lock(mMutex);
    std::vector<DirectoryRecord> all;
    for (const auto& entry : mEntries) {
        all.push_back(entry.second);
    }
    return all;
}

std::size_t DirectoryService::size() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mEntries.size();
}
