// The phone's push listener: application servers POST form-encoded pushes to /push.
#include "PushEndpoint.h"

#include <httplib.h>

#include <sstream>

#include "EmulatedPhone.h"
#include "ExclusiveListener.h"
#include "ListenerGuard.h"
#include "uri/GPALAdmin.h"

namespace {

// Entries of the application table the phonelet looks through.
const int kMaxApplications = 20;

void answer(httplib::Response& response, int status, const std::string& text) {
    response.status = status;
    response.set_content(text + "\n", "text/plain");
}

// The phonelet compares addresses with IPv6 ones in brackets.
std::string bracketed(const std::string& address) {
    if (address.find(':') != std::string::npos && address.find('[') == std::string::npos &&
        address.find(']') == std::string::npos) {
        return "[" + address + "]";
    }
    return address;
}

// Reads the body through our own reader: the library's form handling would refuse a form-encoded
// body above its compiled-in 8 KB before our handler ran. The library refuses a body that announces
// more than kMaxBody itself; we count what arrives in chunks. 0 when read, else the status to answer.
int readBody(const httplib::Request& request, const httplib::ContentReader& reader, std::string& body) {
    bool tooLarge = request.get_header_value<std::uint64_t>("Content-Length") > PushEndpoint::kMaxBody;
    const bool read = !tooLarge && reader([&](const char* data, size_t length) {
        if (body.size() + length > PushEndpoint::kMaxBody) {
            tooLarge = true;
            return false;
        }
        body.append(data, length);
        return true;
    });
    return tooLarge ? 413 : read ? 0 : 400;
}

} // namespace

PushEndpoint::PushEndpoint(EmulatedPhone& phone, const std::string& defaultApplication)
    : mPhone(phone), mDefaultApplication(defaultApplication), mServer(newExclusiveServer()) {}

PushEndpoint::~PushEndpoint() {
    stop();
}

int PushEndpoint::pushType(const std::string& text) {
    static const std::map<std::string, int> types = {
        {"queue", 1}, {"indicate", 2}, {"force", 3}, {"active", 4}, {"1", 1}, {"2", 2}, {"3", 3}, {"4", 4}};
    auto found = types.find(text);
    return found == types.end() ? 0 : found->second;
}

std::map<std::string, std::string> PushEndpoint::decodeForm(const std::string& body) {
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

std::string PushEndpoint::dropReason(const ConfigurationStore& configuration, const std::string& running,
                                     const std::string& application, const std::string& serverAddr) {
    for (int i = 1; i <= kMaxApplications; ++i) {
        const std::string index = std::to_string(i);
        if (configuration.getValue("app-name-" + index) != running) {
            continue;
        }
        bool known = application == running;
        for (const char* tab : {"tab1-app-name-", "tab2-app-name-", "tab3-app-name-"}) {
            known = known || (!application.empty() && configuration.getValue(tab + index) == application);
        }
        if (!known) {
            return "no application named '" + application + "' on this phone";
        }
        const std::string server = configuration.getValue("server-addr-" + index);
        if (bracketed(serverAddr) != server) {
            return "ServerAddr " + serverAddr + " is not the server of " + running + " (" + server + ")";
        }
        return "";
    }
    return "no application named '" + running + "' on this phone";
}

bool PushEndpoint::start(const std::string& host, int port, std::string& problem) {
    mCheckSender = !ListenerGuard::isLoopback(host);
    mServer->set_payload_max_length(kMaxBody);
    ListenerGuard::limitIdleConnections(*mServer);
    mServer->new_task_queue = [] { return new httplib::ThreadPool(kWorkers); };
    mGuard.setJsonBodiesOnly(false);
    mServer->set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        return mGuard.admits(request, response) ? httplib::Server::HandlerResponse::Unhandled
                                                : httplib::Server::HandlerResponse::Handled;
    });
    mServer->Post("/push", [this](const httplib::Request& request, httplib::Response& response,
                                  const httplib::ContentReader& reader) {
        std::string body;
        if (const int status = readBody(request, reader, body); status != 0) {
            return answer(response, status,
                          status == 413 ? "body larger than " + std::to_string(kMaxBody) + " bytes"
                                        : "the body could not be read");
        }
        const auto fields = decodeForm(body);
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
        const std::string dropped =
            dropReason(mPhone.configuration(), mDefaultApplication, application, field("ServerAddr"));
        if (!dropped.empty()) {
            return answer(response, dropped.rfind("no application", 0) == 0 ? 404 : 403,
                          "refused: " + dropped);
        }
        if (mCheckSender && bracketed(request.remote_addr) != bracketed(field("ServerAddr"))) {
            return answer(response, 403,
                          "refused: sent from " + request.remote_addr + ", not from ServerAddr " +
                              field("ServerAddr"));
        }
        const int accepted = mPhone.push(body, application, type, "push endpoint");
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
    mGuard.setListener(host, mPort);
    mThread = std::thread([this] { mServer->listen_after_bind(); });
    return true;
}

void PushEndpoint::stop() {
    if (mThread.joinable()) {
        mServer->stop();
        mThread.join();
    }
}
