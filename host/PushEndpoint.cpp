// The phone's push listener: application servers POST form-encoded pushes to /push.
#include "PushEndpoint.h"

#include <httplib.h>

#include <map>
#include <sstream>

#include "EmulatedPhone.h"
#include "uri/GPALAdmin.h"

namespace {

std::map<std::string, std::string> formFields(const std::string& body) {
    std::map<std::string, std::string> fields;
    std::stringstream pairs(body);
    std::string pair;
    while (std::getline(pairs, pair, '&')) {
        const size_t equals = pair.find('=');
        std::string key;
        std::string value;
        GPALAdmin::decodeUri(pair.substr(0, equals), key);
        if (equals != std::string::npos) {
            GPALAdmin::decodeUri(pair.substr(equals + 1), value);
        }
        fields.emplace(key, value);
    }
    return fields;
}

void answer(httplib::Response& response, int status, const std::string& text) {
    response.status = status;
    response.set_content(text + "\n", "text/plain");
}

} // namespace

PushEndpoint::PushEndpoint(EmulatedPhone& phone, const std::string& defaultApplication)
    : mPhone(phone), mDefaultApplication(defaultApplication), mServer(new httplib::Server()) {}

PushEndpoint::~PushEndpoint() {
    stop();
}

int PushEndpoint::pushType(const std::string& text) {
    static const std::map<std::string, int> types = {
        {"queue", 1}, {"indicate", 2}, {"force", 3}, {"active", 4}, {"1", 1}, {"2", 2}, {"3", 3}, {"4", 4}};
    auto found = types.find(text);
    return found == types.end() ? 0 : found->second;
}

bool PushEndpoint::start(const std::string& host, int port, std::string& problem) {
    mServer->set_payload_max_length(kMaxBody);
    mServer->Post("/push", [this](const httplib::Request& request, httplib::Response& response) {
        const auto fields = formFields(request.body);
        auto field = [&](const char* name) {
            auto found = fields.find(name);
            return found == fields.end() ? std::string() : found->second;
        };
        if (field("ServerAddr").empty()) {
            return answer(response, 400, "missing field ServerAddr");
        }
        const std::string typeText = field("Type").empty() ? "queue" : field("Type");
        const int type = pushType(typeText);
        if (type == 0) {
            return answer(response, 400,
                          "bad Type '" + typeText + "': use queue, indicate, force, active or 1 to 4");
        }
        const std::string application =
            field("Application").empty() ? mDefaultApplication : field("Application");
        const int accepted = mPhone.push(request.body, application, type, "push endpoint");
        if (accepted == 1) {
            return answer(response, 200, "accepted");
        }
        answer(response, 409,
               accepted == 0 ? "refused: an error document is shown or the phone is stopping"
                             : "refused: no application is running");
    });
    mPort = port == 0 ? mServer->bind_to_any_port(host) : (mServer->bind_to_port(host, port) ? port : -1);
    if (mPort <= 0) {
        problem = "cannot listen for pushes on " + host + ":" + std::to_string(port) +
                  " (address in use or not available)";
        return false;
    }
    mThread = std::thread([this] { mServer->listen_after_bind(); });
    return true;
}

void PushEndpoint::stop() {
    if (mThread.joinable()) {
        mServer->stop();
        mThread.join();
    }
}
