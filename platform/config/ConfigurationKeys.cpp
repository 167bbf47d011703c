// The keys of the phone's configuration database.
#include "config/ConfigurationKeys.h"

#include <algorithm>

#include "util/ClientUtils.h"

const std::vector<std::string>& ConfigurationKeys::applicationPrefixes() {
    static const std::vector<std::string> prefixes = {
        "display-name-",      "app-name-",      "app-control-key-",    "server-addr-",       "server-port-",
        "transport-",         "program-name-",  "app-auto-start-",     "proxy-enabled-",     "remote-debug-",
        "debug-prog-name-",   "num-tabs-",      "app-all-tabs-start-", "tab1-display-name-", "tab1-app-name-",
        "tab2-display-name-", "tab2-app-name-", "tab3-display-name-",  "tab3-app-name-",     "app-restart-"};
    return prefixes;
}

const std::vector<std::string>& ConfigurationKeys::phoneWideKeys() {
    static const std::vector<std::string> keys = {"ipaddress",
                                                  "ipv6-ipaddress-global",
                                                  "ip-protocol-mode",
                                                  "http-proxy-addr",
                                                  "http-proxy-port",
                                                  "currentPhoneNumber",
                                                  "e164",
                                                  "language",
                                                  "related-device-type",
                                                  "display-skin",
                                                  "video-allowed",
                                                  "video-on"};
    return keys;
}

bool ConfigurationKeys::isKnown(const std::string& key) {
    const auto& wide = phoneWideKeys();
    if (std::find(wide.begin(), wide.end(), key) != wide.end()) {
        return true;
    }
    for (const std::string& prefix : applicationPrefixes()) {
        if (key.size() > prefix.size() && key.compare(0, prefix.size(), prefix) == 0) {
            const std::string index = key.substr(prefix.size());
            for (int i = 1; i <= MAX_APPLICATIONS; ++i) {
                if (index == ClientUtils::itos(i)) {
                    return true;
                }
            }
        }
    }
    return false;
}
