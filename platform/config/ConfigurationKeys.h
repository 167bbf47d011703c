// The keys of the phone's configuration database.
#pragma once

#include <string>
#include <vector>

// Up to MAX_APPLICATIONS XML applications, each a group of keys ending in the application's
// index ("server-addr-7"), plus the phone-wide settings.
class ConfigurationKeys {
public:
    static constexpr int MAX_APPLICATIONS = 20;

    static const std::vector<std::string>& applicationPrefixes();
    static const std::vector<std::string>& phoneWideKeys();
    // A phone-wide key, or an application prefix followed by 1..20 without leading zeros.
    static bool isKnown(const std::string& key);
};
