// What the emulated phone is set up with: configuration database values and phone settings.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "EmulatedPhone.h"
#include "config/ConfigurationFile.h"

// A configuration file holds the configuration database's own keys ("app-name-1",
// "server-addr-1", "ipaddress", ...) and the emulator's phone settings, which start with
// "phone.":
//   phone.model        soft-keys | no-soft-keys        phone.soft-keys  1..6
//                      (320x240 with a soft-key bar | 240x128 without one)
//   phone.locale       en, de, ...                     phone.ca-file    extra trusted CA (PEM)
//   phone.date-format  MM/DD/YYYY | YYYY-MM-DD | DD.MM.YYYY
//   phone.time-format  12HR | 24HR                     phone.application  name of the app to start
//   phone.phonebook    CSV file of contacts: number,first name,surname,type[,picture]
//   phone.max-document-size  largest response body in bytes, decompressed (1024 to 1073741824;
//                      default 4194304); a larger one shows the network error document
class PhoneConfiguration {
public:
    PhoneConfiguration();

    // Adds the file's settings. False with every problem as "<file>:<line>: <what>". A tab count
    // ("num-tabs-N") must be 0 to 3; an application without one gets 0, with a notice.
    bool loadFile(const std::string& path, std::vector<std::string>& problems);
    // What loadFile supplied by itself, as "<file>:<line>: <what>", for the user to read.
    const std::vector<std::string>& notices() const { return mNotices; }
    // Fills application entry 1 from an application URL (http or https). False with the reason.
    bool useApplicationUrl(const std::string& url, const std::string& appName, std::string& problem);
    // The application to start: `requested` when given, else phone.application, else entry 1's name.
    std::string applicationToStart(const std::string& requested) const;

    const std::map<std::string, std::string>& databaseValues() const { return mDatabase; }
    const PhoneOptions& phoneOptions() const { return mOptions; }

    // Applies a model name ("soft-keys" or "no-soft-keys") to `model`, keeping its soft-key count.
    static bool applyModel(const std::string& name, DisplayAPI::DisplayModel& model);

private:
    bool applyPhoneSetting(const std::string& key, const std::string& value, std::string& problem);
    void defaultMissingTabCounts(const std::string& path,
                                 const std::vector<ConfigurationFile::Entry>& entries);

    std::map<std::string, std::string> mDatabase;
    PhoneOptions mOptions;
    std::string mApplication;
    std::vector<std::string> mNotices;
};
