// The phone's control API: JSON over HTTP for scripts, tests and the web page.
#include "ControlApi.h"

#include <httplib.h>

#include <cctype>
#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>
#include <unistd.h>

#include "EmulatedPhone.h"
#include "EventStream.h"
#include "ExclusiveListener.h"
#include "PhoneJournal.h"
#include "PushEndpoint.h"
#include "TextRenderer.h"
#include "config/ConfigurationKeys.h"
#include "display/Input.h"
#include "phonelet/Phonelet.h"

namespace {

using Json = nlohmann::json;

void reply(httplib::Response& response, const Json& body, int status = 200) {
    response.status = status;
    response.set_content(body.dump(), "application/json");
}

void fault(httplib::Response& response, const std::string& reason, int status = 400) {
    reply(response, {{"error", reason}}, status);
}

// The request's JSON object with exactly the allowed members; false (and a 400) otherwise.
bool readBody(const httplib::Request& request, httplib::Response& response,
              std::initializer_list<const char*> allowed, Json& body) {
    body = Json::parse(request.body.empty() ? "{}" : request.body, nullptr, false);
    if (body.is_discarded() || !body.is_object()) {
        fault(response, "the body is not a JSON object");
        return false;
    }
    for (const auto& member : body.items()) {
        bool known = false;
        for (const char* name : allowed) {
            known = known || member.key() == name;
        }
        if (!known) {
            fault(response, "unknown member '" + member.key() + "'");
            return false;
        }
    }
    return true;
}

// Key names are matched in any case: "Ok", "ok" and "OK" are the same key.
std::string lowerCase(std::string text) {
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

std::uint64_t numberParameter(const httplib::Request& request, const char* name, std::uint64_t fallback) {
    const std::string text = request.get_param_value(name);
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos || text.size() > 18) {
        return fallback;
    }
    return std::stoull(text);
}

} // namespace

ControlApi::ControlApi(EmulatedPhone& phone, PhoneJournal& journal, const std::string& application)
    : mPhone(phone), mJournal(journal), mApplication(application), mServer(newExclusiveServer()) {
    addRoutes();
}

ControlApi::~ControlApi() {
    stop();
}

bool ControlApi::start(const std::string& host, int port, std::string& problem) {
    mPort = port == 0 ? mServer->bind_to_any_port(host) : (mServer->bind_to_port(host, port) ? port : -1);
    if (mPort <= 0) {
        problem =
            "cannot listen on " + host + ":" + std::to_string(port) + " (address in use or not available)";
        return false;
    }
    mThread = std::thread([this] { mServer->listen_after_bind(); });
    return true;
}

void ControlApi::stop() {
    mStopping = true;
    if (mThread.joinable()) {
        mServer->stop();
        mThread.join();
    }
}

bool ControlApi::serveWebPage(const std::string& folder) {
    return access((folder + "/index.html").c_str(), R_OK) == 0 && mServer->set_mount_point("/", folder);
}

void ControlApi::addRoutes() {
    httplib::Server& server = *mServer;
    server.set_payload_max_length(PushEndpoint::kMaxBody);
    // Each open web page holds a worker for its event stream, and a page that went away holds it
    // until the next keep-alive finds the connection closed.
    server.new_task_queue = [] { return new httplib::ThreadPool(kWorkers); };

    // The screen; with ?after=REVISION it waits (up to ?timeout= ms, default 10000) for a newer one.
    server.Get("/api/screen", [this](const httplib::Request& request, httplib::Response& response) {
        const std::uint64_t after = numberParameter(request, "after", 0);
        const std::uint64_t timeout =
            std::min<std::uint64_t>(numberParameter(request, "timeout", 10000), 60000);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout);
        mPhone.display().waitUntilSettled();
        while (after != 0 && mPhone.display().revision() <= after &&
               std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        mPhone.display().waitUntilSettled();
        reply(response, mPhone.display().snapshot());
    });
    server.Get("/api/screen/text", [this](const httplib::Request&, httplib::Response& response) {
        mPhone.display().waitUntilSettled();
        response.set_content(TextRenderer::render(mPhone.display().snapshot()), "text/plain; charset=utf-8");
    });
    server.Post("/api/keys", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"keys"}, body)) {
            return;
        }
        if (!body.contains("keys") || !body["keys"].is_array()) {
            return fault(response, "'keys' must be a list of key names");
        }
        std::vector<DisplayAPI::Key> keys;
        for (const Json& name : body["keys"]) {
            DisplayAPI::Key key;
            if (!name.is_string() || !DisplayAPI::keyFromName(lowerCase(name.get<std::string>()), key)) {
                return fault(response, "unknown key " + name.dump());
            }
            keys.push_back(key);
        }
        Json effects = Json::array();
        for (DisplayAPI::Key key : keys) {
            effects.push_back(mPhone.display().pressKey(key));
            mPhone.display().waitUntilSettled();
        }
        reply(response, {{"handled", effects}});
    });
    server.Post("/api/text", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"text"}, body)) {
            return;
        }
        if (!body.contains("text") || !body["text"].is_string()) {
            return fault(response, "'text' must be a string");
        }
        const bool handled = mPhone.display().typeText(body["text"].get<std::string>());
        mPhone.display().waitUntilSettled();
        reply(response, {{"handled", handled}});
    });
    server.Get("/api/requests", [this](const httplib::Request& request, httplib::Response& response) {
        reply(response, mJournal.requests(numberParameter(request, "after", 0)));
    });
    server.Get("/api/log", [this](const httplib::Request& request, httplib::Response& response) {
        const int level = static_cast<int>(std::min<std::uint64_t>(numberParameter(request, "level", 6), 6));
        reply(response, mJournal.logLines(numberParameter(request, "after", 0),
                                          request.get_param_value("module"), level));
    });
    server.Get("/api/pushes", [this](const httplib::Request& request, httplib::Response& response) {
        reply(response, mJournal.pushes(numberParameter(request, "after", 0)));
    });
    server.Get("/api/state", [this](const httplib::Request&, httplib::Response& response) {
        reply(response, mPhone.describeState());
    });
    // The live feed of the web page; see EventStream for its events.
    server.Get("/api/events", [this](const httplib::Request& request, httplib::Response& response) {
        const std::string lastId = request.get_header_value("Last-Event-ID");
        const bool numeric = !lastId.empty() && lastId.size() < 19 &&
                             lastId.find_first_not_of("0123456789") == std::string::npos;
        auto stream = std::make_shared<EventStream>(mPhone, mJournal, numeric ? std::stoull(lastId) : 0);
        response.set_header("Cache-Control", "no-store");
        response.set_chunked_content_provider(
            "text/event-stream", [this, stream](size_t, httplib::DataSink& sink) {
                return !mStopping && stream->writeNews(sink, std::chrono::seconds(1));
            });
    });
    server.Post("/api/application", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"action"}, body)) {
            return;
        }
        const std::string action = body.value("action", "");
        if (action != "show" && action != "hide" && action != "tab") {
            return fault(response, "'action' must be show, hide or tab");
        }
        mPhone.lifeCycle(action);
        mPhone.display().waitUntilSettled();
        reply(response, {{"done", action}});
    });
    server.Post("/api/config", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"values"}, body)) {
            return;
        }
        if (!body.contains("values") || !body["values"].is_object()) {
            return fault(response, "'values' must be an object of configuration keys and texts");
        }
        std::vector<std::pair<std::string, std::string>> values;
        for (const auto& value : body["values"].items()) {
            if (!ConfigurationKeys::isKnown(value.key())) {
                return fault(response, "unknown configuration key '" + value.key() + "'");
            }
            if (!value.value().is_string()) {
                return fault(response, "the value of '" + value.key() + "' must be a string");
            }
            values.emplace_back(value.key(), value.value().get<std::string>());
        }
        if (!mPhone.configuration().setValues(values)) {
            return fault(response, "a value cannot be stored (line breaks are not allowed)");
        }
        reply(response, {{"changed", values.size()}});
    });
    server.Post("/api/push", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"data", "application", "type"}, body)) {
            return;
        }
        const std::string data = body.value("data", "");
        const int type = PushEndpoint::pushType(body.value("type", "queue"));
        if (data.empty() || type == 0) {
            return fault(response, "'data' (form-encoded push fields) and 'type' (queue, indicate, force, "
                                   "active) are needed");
        }
        const int accepted = mPhone.push(data, body.value("application", mApplication), type, "control API");
        reply(response, {{"accepted", accepted == 1}}, accepted == 1 ? 200 : 409);
    });
    server.Post("/api/quit", [this](const httplib::Request&, httplib::Response& response) {
        mQuit = true;
        reply(response, {{"quitting", true}});
    });
}
