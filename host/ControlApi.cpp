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
#include "display/Image.h"
#include "display/Input.h"
#include "phonelet/Phonelet.h"

namespace {

using Json = nlohmann::json;

void reply(httplib::Response& response, const Json& body, int status = 200) {
    response.status = status;
    // The journal holds valid UTF-8 only; should anything else slip in, it is replaced rather
    // than failing the whole answer.
    response.set_content(body.dump(-1, ' ', false, Json::error_handler_t::replace), "application/json");
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

// The string member `name` of `body` into `value` (`fallback` when absent); false (and a 400) when
// it is there but not a string.
bool stringMember(const Json& body, const char* name, const std::string& fallback, std::string& value,
                  httplib::Response& response) {
    if (!body.contains(name)) {
        value = fallback;
        return true;
    }
    if (!body[name].is_string()) {
        fault(response, std::string("'") + name + "' must be a string");
        return false;
    }
    value = body[name].get<std::string>();
    return true;
}

// Gives its event-stream slot back when the stream ends, however it ends.
class StreamSlot {
public:
    explicit StreamSlot(std::atomic<int>& count) : mCount(count) {}
    ~StreamSlot() { --mCount; }
    StreamSlot(const StreamSlot&) = delete;
    StreamSlot& operator=(const StreamSlot&) = delete;

private:
    std::atomic<int>& mCount;
};

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
    mGuard.setListener(host, mPort);
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

namespace {

Json describeContact(const DirectoryRecord& record) {
    return {{"number", record.number},
            {"firstName", record.firstName},
            {"surname", record.surname},
            {"type", DirectoryService::numberTypeName(record.numberType)},
            {"picture", record.pictureFileName}};
}

bool contactFromJson(const Json& body, DirectoryRecord& record, std::string& problem) {
    for (const char* member : {"number", "firstName", "surname", "type", "picture"}) {
        if (body.contains(member) && !body[member].is_string()) {
            problem = std::string("'") + member + "' must be a string";
            return false;
        }
        if (body.contains(member) &&
            body[member].get<std::string>().size() > DirectoryService::MAX_FIELD_LENGTH) {
            problem = std::string("'") + member + "' is longer than " +
                      std::to_string(DirectoryService::MAX_FIELD_LENGTH) + " characters";
            return false;
        }
    }
    record.number = body.value("number", "");
    record.firstName = body.value("firstName", "");
    record.surname = body.value("surname", "");
    record.pictureFileName = body.value("picture", "");
    record.numberType = DirectoryService::numberType(body.value("type", "private"));
    if (record.number.empty()) {
        problem = "'number' is needed";
    } else if (record.numberType == 0) {
        problem = "'type' must be private, business, business2 or mobile";
    } else if (record.pictureFileName.find('/') != std::string::npos) {
        problem = "'picture' is a file name in the phone's picture folder, without '/'";
    }
    return problem.empty();
}

// The newest call that an action may act on: answer takes unanswered calls, hold answered ones
// not held, retrieve held ones, hangup any.
std::string newestCallFor(const std::string& action, const std::vector<EmulatedCallControl::Call>& calls) {
    for (auto call = calls.rbegin(); call != calls.rend(); ++call) {
        const bool fits = action == "answer"     ? !call->answered
                          : action == "hold"     ? call->answered && !call->held
                          : action == "retrieve" ? call->held
                                                 : true;
        if (fits) {
            return call->callId;
        }
    }
    return "";
}

} // namespace

void ControlApi::handleCallAction(const Json& body, httplib::Response& response) {
    std::string action;
    std::string number;
    std::string callId;
    if (!stringMember(body, "action", "", action, response) ||
        !stringMember(body, "number", "", number, response) ||
        !stringMember(body, "call", "", callId, response)) {
        return;
    }
    EmulatedCallControl& calls = mPhone.callControl();
    if (action == "ring") {
        std::string problem;
        callId = calls.ringIncoming(number, problem);
        if (callId.empty()) {
            return fault(response, problem);
        }
        return reply(response, {{"call", callId}});
    }
    if (action != "answer" && action != "hold" && action != "retrieve" && action != "hangup") {
        return fault(response, "'action' must be ring, answer, hold, retrieve or hangup");
    }
    if (callId.empty()) {
        callId = newestCallFor(action, calls.calls());
    }
    const bool done = !callId.empty() && (action == "answer"   ? calls.answerCall(callId)
                                          : action == "hangup" ? calls.hangUp(callId)
                                                               : calls.holdCall(callId, action == "hold"));
    if (!done) {
        return fault(response,
                     callId.empty() ? "no call to " + action : "call '" + callId + "' cannot " + action, 409);
    }
    reply(response, {{"call", callId}, {"done", action}});
}

void ControlApi::addRoutes() {
    httplib::Server& server = *mServer;
    server.set_payload_max_length(PushEndpoint::kMaxBody);
    // Each open web page holds a worker for its event stream, and a page that went away holds it
    // until the next keep-alive finds the connection closed; streams are capped below the workers.
    server.new_task_queue = [] { return new httplib::ThreadPool(kWorkers); };
    ListenerGuard::limitIdleConnections(server);
    server.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        return mGuard.admits(request, response) ? httplib::Server::HandlerResponse::Unhandled
                                                : httplib::Server::HandlerResponse::Handled;
    });
    // A fault of ours is a 500 without its inner details.
    server.set_exception_handler([](const httplib::Request&, httplib::Response& response,
                                    std::exception_ptr) { fault(response, "internal error", 500); });

    // The screen; with ?after=REVISION it waits (up to ?timeout= ms, default 10000) for a newer one.
    server.Get("/api/screen", [this](const httplib::Request& request, httplib::Response& response) {
        const std::uint64_t after = numberParameter(request, "after", 0);
        const std::uint64_t timeout =
            std::min<std::uint64_t>(numberParameter(request, "timeout", 10000), 60000);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout);
        mPhone.display().waitUntilSettled();
        // Every change of the display moves the journal's news, so the wait wakes on the change.
        std::uint64_t news = mJournal.news().count();
        while (after != 0 && mPhone.display().revision() <= after) {
            const auto now = std::chrono::steady_clock::now();
            if (now >= deadline) {
                break;
            }
            news = mJournal.news().waitPast(
                news, std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now));
        }
        mPhone.display().waitUntilSettled();
        reply(response, mPhone.display().snapshot());
    });
    // Answers once the phone is settled (see EmulatedPhone::waitUntilIdle), or 504 after
    // ?timeout= ms (default 10000, at most 60000).
    server.Get("/api/idle", [this](const httplib::Request& request, httplib::Response& response) {
        const std::uint64_t timeout =
            std::min<std::uint64_t>(numberParameter(request, "timeout", 10000), 60000);
        std::string busy;
        if (mPhone.waitUntilIdle(std::chrono::milliseconds(timeout), busy)) {
            reply(response, {{"idle", true}, {"revision", mPhone.display().revision()}});
        } else {
            reply(response, {{"idle", false}, {"busy", busy}}, 504);
        }
    });
    server.Get("/api/screen/text", [this](const httplib::Request&, httplib::Response& response) {
        mPhone.display().waitUntilSettled();
        response.set_content(TextRenderer::render(mPhone.display().snapshot()), "text/plain; charset=utf-8");
    });
    // The bytes of a picture on the screen, by the id the snapshot gives it ("url").
    server.Get(R"(/api/pictures/(\d{1,18}))", [](const httplib::Request& request,
                                                 httplib::Response& response) {
        const auto picture = DisplayAPI::Image::find(std::stoul(request.matches[1].str()));
        if (!picture || picture->kind == "broken") {
            reply(response, Json{{"error", "no picture " + request.matches[1].str() + " on the phone"}}, 404);
            return;
        }
        response.set_header("Cache-Control", "no-store");
        response.set_content(std::string(picture->bytes.begin(), picture->bytes.end()),
                             "image/" + picture->kind);
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
        if (!readBody(request, response, {"text", "replace"}, body)) {
            return;
        }
        if (!body.contains("text") || !body["text"].is_string()) {
            return fault(response, "'text' must be a string");
        }
        if (body.contains("replace") && !body["replace"].is_boolean()) {
            return fault(response, "'replace' must be true or false");
        }
        const bool handled =
            mPhone.display().typeText(body["text"].get<std::string>(), body.value("replace", false));
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
    // The detail level of the log lines the phone keeps (the web page raises it when the
    // developer asks for the detailed trace).
    server.Get("/api/log/level", [this](const httplib::Request&, httplib::Response& response) {
        reply(response, {{"level", mJournal.maximumLevel()}});
    });
    server.Post("/api/log/level", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"level"}, body)) {
            return;
        }
        const Json& level = body.contains("level") ? body["level"] : Json();
        if (!level.is_number_integer() || level.get<std::int64_t>() < 0 ||
            level.get<std::int64_t>() > PhoneJournal::kMostDetailedLevel) {
            return fault(response, "'level' must be a whole number from 0 to 6");
        }
        mJournal.setLogLevel(static_cast<int>(level.get<std::int64_t>()));
        reply(response, {{"level", mJournal.maximumLevel()}});
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
        if (++mEventStreams > kMaxEventStreams) {
            --mEventStreams;
            return fault(response, "too many event streams (" + std::to_string(kMaxEventStreams) + " open)",
                         503);
        }
        auto slot = std::make_shared<StreamSlot>(mEventStreams);
        auto stream = std::make_shared<EventStream>(mPhone, mJournal, numeric ? std::stoull(lastId) : 0);
        response.set_header("Cache-Control", "no-store");
        response.set_chunked_content_provider(
            "text/event-stream", [this, stream, slot](size_t, httplib::DataSink& sink) {
                return !mStopping && stream->writeNews(sink, std::chrono::seconds(1));
            });
    });
    server.Post("/api/application", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"action"}, body)) {
            return;
        }
        std::string action;
        if (!stringMember(body, "action", "", action, response)) {
            return;
        }
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
    // The phone's date and time formats, changed as a user would in the phone's settings.
    server.Post("/api/formats", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"date", "time"}, body)) {
            return;
        }
        const Json date = body.value("date", Json());
        const Json time = body.value("time", Json());
        const bool dateKnown =
            date.is_null() || (date.is_string() && EmulatedPhone::isDateFormat(date.get<std::string>()));
        const bool timeKnown =
            time.is_null() || (time.is_string() && EmulatedPhone::isTimeFormat(time.get<std::string>()));
        if (!dateKnown || !timeKnown) {
            return fault(response,
                         "'date' must be MM/DD/YYYY, YYYY-MM-DD or DD.MM.YYYY and 'time' 12HR or 24HR");
        }
        if (date.is_string()) {
            mPhone.setDateFormat(date.get<std::string>());
        }
        if (time.is_string()) {
            mPhone.setTimeFormat(time.get<std::string>());
        }
        mPhone.display().waitUntilSettled();
        reply(response, {{"date", mPhone.dateFormat()}, {"time", mPhone.timeFormat()}});
    });
    server.Post("/api/push", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"data", "application", "type"}, body)) {
            return;
        }
        std::string data;
        std::string typeText;
        std::string application;
        if (!stringMember(body, "data", "", data, response) ||
            !stringMember(body, "type", "queue", typeText, response) ||
            !stringMember(body, "application", mApplication, application, response)) {
            return;
        }
        const int type = PushEndpoint::pushType(typeText);
        if (data.empty() || type == 0) {
            return fault(response, "'data' (form-encoded push fields) and 'type' (queue, indicate, force, "
                                   "active) are needed");
        }
        const auto fields = PushEndpoint::decodeForm(data);
        const auto serverAddr = fields.find("ServerAddr");
        const std::string dropped =
            PushEndpoint::dropReason(mPhone.configuration(), mApplication, application,
                                     serverAddr == fields.end() ? "" : serverAddr->second);
        if (!dropped.empty()) {
            return fault(response, "refused: " + dropped, 409);
        }
        const int accepted = mPhone.push(data, application, type, "control API");
        reply(response, {{"accepted", accepted == 1}}, accepted == 1 ? 200 : 409);
    });
    server.Get("/api/calls", [this](const httplib::Request&, httplib::Response& response) {
        reply(response, mPhone.describeCalls());
    });
    // The user's side of calls: ring (an incoming call from "number"), answer, hold, retrieve and
    // hangup ("call", or the newest call that fits).
    server.Post("/api/calls", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"action", "number", "call"}, body)) {
            return;
        }
        handleCallAction(body, response);
    });
    server.Get("/api/phonebook", [this](const httplib::Request&, httplib::Response& response) {
        Json entries = Json::array();
        for (const DirectoryRecord& record : mPhone.directory().entries()) {
            entries.push_back(describeContact(record));
        }
        reply(response, entries);
    });
    server.Post("/api/phonebook", [this](const httplib::Request& request, httplib::Response& response) {
        Json body;
        if (!readBody(request, response, {"number", "firstName", "surname", "type", "picture"}, body)) {
            return;
        }
        DirectoryRecord record;
        std::string problem;
        if (!contactFromJson(body, record, problem)) {
            return fault(response, problem);
        }
        if (!mPhone.directory().addEntry(record)) {
            return fault(response,
                         "'" + record.number + "' is not a phone number, or the phone book is full");
        }
        reply(response, describeContact(record));
    });
    server.Delete("/api/phonebook", [this](const httplib::Request& request, httplib::Response& response) {
        const std::string number = request.get_param_value("number");
        if (number.empty()) {
            return fault(response, "?number= names the entry to remove");
        }
        if (!mPhone.directory().removeEntry(number)) {
            return fault(response, "no entry for '" + number + "'", 404);
        }
        reply(response, {{"removed", number}});
    });
    server.Post("/api/quit", [this](const httplib::Request&, httplib::Response& response) {
        mQuit = true;
        reply(response, {{"quitting", true}});
    });
}
