// Installs arbitrary documents in the running phonelet and presses keys on them: the input is a
// document, optionally followed by a zero byte and key bytes. The document comes from a loopback
// application server through an active push, as a server's would; every request the keys cause
// gets the same document.
#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "PushEndpoint.h"
#include "threads/ThreadActivity.h"

namespace {

using DisplayAPI::Key;

const Key kKeys[] = {Key::Up,     Key::Down,     Key::Left,     Key::Right,    Key::Ok,
                     Key::Back,   Key::SoftKey1, Key::SoftKey2, Key::SoftKey3, Key::SoftKey4,
                     Key::Digit1, Key::Digit5,   Key::Star,     Key::Hash};
// Keys pressed on a document that comes without any.
const std::uint8_t kDefaultKeys[] = {1, 4, 0, 6, 4, 5};
constexpr std::size_t kMaxKeys = 32;
constexpr auto kSettleTime = std::chrono::milliseconds(2000);

// One phone for the whole run; a new one when the application ended itself (an exit command).
class FuzzPhone {
public:
    FuzzPhone() {
        // The plug-in stays mapped for the whole run, even when a phone unloads it: the fuzzer
        // keeps reading its coverage counters.
        if (dlopen(AGP_PLUGIN_PATH, RTLD_NOW | RTLD_NODELETE) == nullptr) {
            std::fprintf(stderr, "fuzz_screens: %s\n", dlerror());
            std::abort();
        }
        startPhone();
    }

    void run(const std::string& document, const std::vector<std::uint8_t>& keys) {
        if (!mPhone->isRunning()) {
            startPhone();
        }
        mServer.setDocument(document);
        mPhone->push("ServerAddr=127.0.0.1&ServerPort=" + std::to_string(mServer.port()) +
                         "&ProgramName=app/fuzz",
                     kApplication, PushEndpoint::pushType("active"), "fuzz");
        settle();
        for (std::uint8_t key : keys) {
            mPhone->display().pressKey(kKeys[key % (sizeof kKeys / sizeof kKeys[0])]);
            settle();
        }
    }

private:
    static constexpr const char* kApplication = "fuzz";

    void startPhone() {
        mPhone.reset();
        PhoneOptions options;
        options.applicationName = kApplication;
        mPhone = std::make_unique<EmulatedPhone>(options);
        mServer.setDocument("<IppDisplay><IppScreen ID=\"1\"><IppTextBox><Title>Fuzz</Title>"
                            "<Text>ready</Text></IppTextBox></IppScreen></IppDisplay>");
        const std::string port = std::to_string(mServer.port());
        mPhone->configuration().setValues({{"app-name-1", kApplication},
                                           {"server-addr-1", "127.0.0.1"},
                                           {"server-port-1", port},
                                           {"transport-1", "http"},
                                           {"program-name-1", "app/start"},
                                           {"num-tabs-1", "0"},
                                           {"ipaddress", "192.0.2.55"},
                                           {"currentPhoneNumber", "3100"}});
        std::string error;
        if (!mPhone->loadPhonelet(AGP_PLUGIN_PATH, error)) {
            std::fprintf(stderr, "fuzz_screens: %s\n", error.c_str());
            std::abort();
        }
        mPhone->start();
        settle();
    }
    // Until the queues have nothing left to do, checked twice a little apart (a message being
    // handed on between two threads), for at most kSettleTime: quicker than the phone's own idle
    // wait, which also asks for a quarter second without a change of the display.
    void settle() {
        const auto deadline = std::chrono::steady_clock::now() + kSettleTime;
        int quietChecks = 0;
        while (quietChecks < 2 && std::chrono::steady_clock::now() < deadline) {
            mPhone->display().waitUntilSettled();
            quietChecks = ThreadActivity::allWaitingForWork() ? quietChecks + 1 : 0;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

    ApplicationServer mServer;
    std::unique_ptr<EmulatedPhone> mPhone;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Stopped at exit, before the platform's own statics (made while it starts) go.
    static FuzzPhone phone;
    std::size_t documentEnd = 0;
    while (documentEnd < size && data[documentEnd] != 0) {
        ++documentEnd;
    }
    std::vector<std::uint8_t> keys;
    if (documentEnd < size) {
        keys.assign(data + documentEnd + 1, data + std::min(size, documentEnd + 1 + kMaxKeys));
    } else {
        keys.assign(std::begin(kDefaultKeys), std::end(kDefaultKeys));
    }
    phone.run(std::string(reinterpret_cast<const char*>(data), documentEnd), keys);
    return 0;
}
