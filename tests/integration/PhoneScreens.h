// Shared by the screen tests: the emulated phone running the plug-in against a loopback server.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "EmulatedPhone.h"

// The download file is named after the application, so tests that run at the same time use
// names of their own: `prefix` and the running test's name.
inline std::string uniqueApplicationName(const std::string& prefix) {
    std::string name = prefix + ::testing::UnitTest::GetInstance()->current_test_info()->name();
    for (char& c : name) {
        if (c == '/') {
            c = '-';
        }
    }
    return name;
}

// Application entry 1 named `name` at "app/start" on the loopback server at `port`, with the
// phone's own address, number and language.
inline std::vector<std::pair<std::string, std::string>>
loopbackApplication(const std::string& name, const std::string& port, const std::string& language = "en") {
    return {{"app-name-1", name},        {"server-addr-1", "127.0.0.1"},  {"server-port-1", port},
            {"transport-1", "http"},     {"program-name-1", "app/start"}, {"num-tabs-1", "0"},
            {"ipaddress", "192.0.2.55"}, {"ip-protocol-mode", "IPv4"},    {"currentPhoneNumber", "3100"},
            {"language", language}};
}

// The phonelet reacts on its own threads; polls the display (5 s at most) until `condition`
// holds, and returns the last snapshot seen.
inline nlohmann::json waitForScreen(EmulatedPhone& phone,
                                    const std::function<bool(const nlohmann::json&)>& condition) {
    nlohmann::json shot;
    for (int i = 0; i < 500; ++i) {
        phone.display().waitUntilSettled();
        shot = phone.display().snapshot();
        if (condition(shot)) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return shot;
}

inline bool popupIs(const nlohmann::json& shot, const std::string& kind) {
    return shot["popup"].is_object() && shot["popup"]["kind"] == kind;
}
