// The phone's push listener: application servers POST form-encoded pushes to /push.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <thread>

#include "ListenerGuard.h"

class ConfigurationStore;
class EmulatedPhone;

namespace httplib {
class Server;
}

// Fields: ServerAddr, ServerPort, ProgramName, ServerProtocol, ServerContextKey,
// ServerContextValue (read by the phonelet from the body as received), plus Application (the
// application's name; default: the started one) and Type (queue, indicate, force, active or 1..4).
// Requests pass the ListenerGuard first (own Host, no foreign Origin). Answers 200 accepted; 400 with the
// reason for a malformed push; 403 when the push names another server than the application's (or, on a
// listener beyond loopback, comes from another address than its ServerAddr); 404 for an application the phone
// does not run; 409 refused by the phonelet; 413 for a body over kMaxBody.
class PushEndpoint {
public:
    static constexpr size_t kMaxBody = 64 * 1024;
    // Enough that a crowd of idle connections (each given back within seconds) leaves room.
    static constexpr size_t kWorkers = 32;

    PushEndpoint(EmulatedPhone& phone, const std::string& defaultApplication);
    ~PushEndpoint();
    PushEndpoint(const PushEndpoint&) = delete;
    PushEndpoint& operator=(const PushEndpoint&) = delete;

    // Listens on host:port (port 0: any free port). False with the reason.
    bool start(const std::string& host, int port, std::string& problem);
    int port() const { return mPort; }
    void stop();

    // Type text to the phonelet's push type; 0 when unknown.
    static int pushType(const std::string& text);
    // The fields of a form-encoded body; the first of repeated names wins.
    static std::map<std::string, std::string> decodeForm(const std::string& body);
    // Why the phonelet would drop this push without a word: "" when it would take it. The push is
    // for `application` (a name of the running application `running` or one of its tabs) and names
    // `serverAddr`, which must be that application's configured server address.
    static std::string dropReason(const ConfigurationStore& configuration, const std::string& running,
                                  const std::string& application, const std::string& serverAddr);

private:
    EmulatedPhone& mPhone;
    std::string mDefaultApplication;
    std::unique_ptr<httplib::Server> mServer;
    std::thread mThread;
    int mPort = 0;
    bool mCheckSender = false; // beyond loopback: the sender must be the push's ServerAddr
    ListenerGuard mGuard;
};
