// What the emulated phone is set up with: configuration database values and phone settings.
#include "PhoneConfiguration.h"

#include <curl/curl.h>

#include <algorithm>
#include <cstdlib>

#include "config/ConfigurationFile.h"
#include "config/ConfigurationKeys.h"

namespace {

const char* const kPhonePrefix = "phone.";
const std::string kAppNamePrefix = "app-name-";
const std::string kNumTabsPrefix = "num-tabs-";

bool isOneOf(const std::string& value, std::initializer_list<const char*> allowed) {
    for (const char* candidate : allowed) {
        if (value == candidate) {
            return true;
        }
    }
    return false;
}

// Splits an application URL with libcurl's own parser, so that it reads URLs as the HTTP
// service will.
bool splitUrl(const std::string& url, std::string& scheme, std::string& host, std::string& port,
              std::string& path, std::string& problem) {
    CURLU* handle = curl_url();
    bool ok = curl_url_set(handle, CURLUPART_URL, url.c_str(), 0) == CURLUE_OK;
    auto part = [&](CURLUPart which, std::string& out, unsigned int flags) {
        char* text = nullptr;
        if (curl_url_get(handle, which, &text, flags) == CURLUE_OK && text != nullptr) {
            out = text;
            curl_free(text);
        }
    };
    std::string query;
    if (ok) {
        part(CURLUPART_SCHEME, scheme, 0);
        part(CURLUPART_HOST, host, 0);
        part(CURLUPART_PORT, port, CURLU_DEFAULT_PORT);
        part(CURLUPART_PATH, path, 0);
        part(CURLUPART_QUERY, query, 0);
    }
    curl_url_cleanup(handle);
    if (!ok || host.empty()) {
        problem = "not a URL with scheme and host: " + url;
        return false;
    }
    if (scheme != "http" && scheme != "https") {
        problem = "the application URL must be http or https: " + url;
        return false;
    }
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2); // the phonelet brackets IPv6 addresses itself
    }
    if (!query.empty()) {
        path += "?" + query;
    }
    return true;
}

int lineOf(const std::string& problem) {
    const size_t first = problem.find(':');
    return first == std::string::npos ? 0 : std::atoi(problem.c_str() + first + 1);
}

// Problems found in two passes are reported in file order.
void sortByLine(std::vector<std::string>& problems, size_t from) {
    std::stable_sort(problems.begin() + static_cast<long>(from), problems.end(),
                     [](const std::string& a, const std::string& b) { return lineOf(a) < lineOf(b); });
}

} // namespace

PhoneConfiguration::PhoneConfiguration() {
    // A phone that works out of the box against a local application server.
    mDatabase = {{"ipaddress", "127.0.0.1"},
                 {"ip-protocol-mode", "IPv4"},
                 {"currentPhoneNumber", "100"},
                 {"language", "en"},
                 {"related-device-type", "Veltria 80"}};
}

bool PhoneConfiguration::applyModel(const std::string& name, DisplayAPI::DisplayModel& model) {
    const int softKeys = model.softKeys;
    if (name == "soft-keys") {
        model = DisplayAPI::DisplayModel();
    } else if (name == "no-soft-keys") {
        model = {"compact desk phone", false, softKeys, 240, 128, 5};
    } else {
        return false;
    }
    model.softKeys = softKeys;
    return true;
}

namespace {

bool readDocumentSize(const std::string& text, std::uint64_t& bytes) {
    if (text.empty() || text.size() > 10 || text.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    const std::uint64_t value = std::stoull(text);
    if (value < 1024 || value > 1024 * 1024 * 1024) {
        return false;
    }
    bytes = value;
    return true;
}

} // namespace

bool PhoneConfiguration::applyPhoneSetting(const std::string& key, const std::string& value,
                                           std::string& problem) {
    if (key == "phone.model") {
        if (!applyModel(value, mOptions.model)) {
            problem = "bad value '" + value + "' for " + key;
            return false;
        }
    } else if (key == "phone.soft-keys" && value.size() == 1 && value[0] >= '1' && value[0] <= '6') {
        mOptions.model.softKeys = value[0] - '0';
    } else if (key == "phone.locale" && !value.empty()) {
        mOptions.locale = value;
    } else if (key == "phone.ca-file") {
        mOptions.extraCaFile = value;
    } else if (key == "phone.date-format" && isOneOf(value, {"MM/DD/YYYY", "YYYY-MM-DD", "DD.MM.YYYY"})) {
        mOptions.dateFormat = value;
    } else if (key == "phone.time-format" && isOneOf(value, {"12HR", "24HR"})) {
        mOptions.timeFormat = value;
    } else if (key == "phone.files" && !value.empty()) {
        mOptions.filesFolder = value;
    } else if (key == "phone.phonebook" && !value.empty()) {
        mOptions.phonebookFile = value;
    } else if (key == "phone.application" && !value.empty()) {
        mApplication = value;
    } else if (key == "phone.max-document-size") {
        if (!readDocumentSize(value, mOptions.maxDocumentSize)) {
            problem = "bad value '" + value + "' for " + key + ": a number of bytes from 1024 to 1073741824";
            return false;
        }
    } else if (isOneOf(key, {"phone.soft-keys", "phone.locale", "phone.date-format", "phone.time-format",
                             "phone.application", "phone.files", "phone.phonebook"})) {
        problem = "bad value '" + value + "' for " + key;
        return false;
    } else {
        problem = "unknown phone setting " + key;
        return false;
    }
    return true;
}

bool PhoneConfiguration::loadFile(const std::string& path, std::vector<std::string>& problems) {
    auto isKnown = [](const std::string& key) {
        return key.compare(0, 6, kPhonePrefix) == 0 || ConfigurationKeys::isKnown(key);
    };
    std::vector<ConfigurationFile::Entry> entries;
    const size_t before = problems.size();
    ConfigurationFile::read(path, entries, problems, isKnown);
    for (const ConfigurationFile::Entry& entry : entries) {
        std::string problem;
        if (entry.key.compare(0, kNumTabsPrefix.size(), kNumTabsPrefix) == 0 &&
            !isOneOf(entry.value, {"0", "1", "2", "3"})) {
            // The phonelet would wait on its start-up screen for ever, requesting nothing.
            problems.push_back(path + ":" + std::to_string(entry.line) + ": bad value '" + entry.value +
                               "' for " + entry.key + ": 0 (one screen, no tabs) or 1 to 3 (tabs)");
        } else if (entry.key.compare(0, 6, kPhonePrefix) != 0) {
            mDatabase[entry.key] = entry.value;
        } else if (!applyPhoneSetting(entry.key, entry.value, problem)) {
            problems.push_back(path + ":" + std::to_string(entry.line) + ": " + problem);
        }
    }
    sortByLine(problems, before);
    defaultMissingTabCounts(path, entries);
    return problems.size() == before;
}

void PhoneConfiguration::defaultMissingTabCounts(const std::string& path,
                                                 const std::vector<ConfigurationFile::Entry>& entries) {
    for (const ConfigurationFile::Entry& entry : entries) {
        if (entry.key.compare(0, kAppNamePrefix.size(), kAppNamePrefix) != 0) {
            continue;
        }
        const std::string numTabs = kNumTabsPrefix + entry.key.substr(kAppNamePrefix.size());
        if (mDatabase.count(numTabs) == 0) {
            mDatabase[numTabs] = "0";
            mNotices.push_back(path + ":" + std::to_string(entry.line) + ": " + entry.key + " has no " +
                               numTabs + "; using 0 (one screen, no tabs)");
        }
    }
}

bool PhoneConfiguration::useApplicationUrl(const std::string& url, const std::string& appName,
                                           std::string& problem) {
    std::string scheme, host, port, path;
    if (!splitUrl(url, scheme, host, port, path, problem)) {
        return false;
    }
    const std::string name = appName.empty() ? "app" : appName;
    mDatabase["app-name-1"] = name;
    mDatabase["display-name-1"] = name;
    mDatabase["transport-1"] = scheme;
    mDatabase["server-addr-1"] = host;
    mDatabase["server-port-1"] = port;
    mDatabase["program-name-1"] = path.size() > 1 ? path.substr(1) : "";
    mDatabase["num-tabs-1"] = "0";
    return true;
}

std::string PhoneConfiguration::applicationToStart(const std::string& requested) const {
    if (!requested.empty()) {
        return requested;
    }
    if (!mApplication.empty()) {
        return mApplication;
    }
    auto first = mDatabase.find("app-name-1");
    return first != mDatabase.end() ? first->second : "";
}
