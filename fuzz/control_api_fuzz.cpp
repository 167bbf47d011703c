// Sends arbitrary bodies and query values to agp-phone's control API over loopback: the first
// byte picks the call, the rest is the JSON body (or the query value of a GET). Every answer must
// be one the documentation lists; a 500 (an exception escaping a handler) stops the run.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <httplib.h>
#include <memory>
#include <string>

#include "ControlApi.h"
#include "EmulatedPhone.h"
#include "PhoneJournal.h"

namespace {

struct Call {
    const char* method;
    const char* path;
};

const Call kCalls[] = {
    {"POST", "/api/keys"},
    {"POST", "/api/text"},
    {"POST", "/api/config"},
    {"POST", "/api/formats"},
    {"POST", "/api/push"},
    {"POST", "/api/calls"},
    {"POST", "/api/phonebook"},
    {"POST", "/api/log/level"},
    {"POST", "/api/application"},
    {"GET", "/api/requests?after="},
    {"GET", "/api/log?level="},
    {"GET", "/api/pushes?after="},
    {"GET", "/api/screen?timeout=0&after="},
    {"GET", "/api/pictures/"},
    {"DELETE", "/api/phonebook?number="},
};

// The phone without an application (its calls answer all the same) and its control API.
class FuzzControl {
public:
    FuzzControl() : mPhone(PhoneOptions()), mControl(mPhone, mJournal, "fuzz") {
        std::string problem;
        if (!mControl.start("127.0.0.1", 0, problem)) {
            std::fprintf(stderr, "fuzz_control_api: %s\n", problem.c_str());
            std::abort();
        }
        mClient = std::make_unique<httplib::Client>("127.0.0.1", mControl.port());
        mClient->set_keep_alive(true);
        mClient->set_tcp_nodelay(true);
        mClient->set_read_timeout(10);
    }
    ~FuzzControl() {
        mClient.reset();
        mControl.stop();
    }

    void send(const Call& call, const std::string& text) {
        const std::string method = call.method;
        const std::string target =
            method == "POST" ? call.path : call.path + httplib::detail::encode_query_param(text);
        httplib::Result answer = method == "POST"  ? mClient->Post(target.c_str(), text, "application/json")
                                 : method == "GET" ? mClient->Get(target.c_str())
                                                   : mClient->Delete(target.c_str());
        if (!answer) {
            return; // a request the client itself refuses to send
        }
        const int status = answer->status;
        if (status != 200 && status != 400 && status != 404 && status != 409 && status != 413) {
            std::fprintf(stderr, "fuzz_control_api: %s %s answered %d: %s\n", call.method, call.path, status,
                         answer->body.c_str());
            std::abort();
        }
    }

private:
    PhoneJournal mJournal;
    EmulatedPhone mPhone;
    ControlApi mControl;
    std::unique_ptr<httplib::Client> mClient;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FuzzControl control;
    if (size == 0) {
        return 0;
    }
    const Call& call = kCalls[data[0] % (sizeof kCalls / sizeof kCalls[0])];
    control.send(call, std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    return 0;
}
