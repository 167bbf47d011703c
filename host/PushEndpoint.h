// The phone's push listener: application servers POST form-encoded pushes to /push.
#pragma once

#include <memory>
#include <string>
#include <thread>

class EmulatedPhone;

namespace httplib {
class Server;
}

// Fields: ServerAddr, ServerPort, ProgramName, ServerProtocol, ServerContextKey,
// ServerContextValue (read by the phonelet from the body as received), plus Application (the
// application's name; default: the started one) and Type (queue, indicate, force, active or 1..4).
// Answers 200 accepted, 409 refused by the phonelet, 400 with the reason for a malformed push.
class PushEndpoint {
public:
    static constexpr size_t kMaxBody = 64 * 1024;

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

private:
    EmulatedPhone& mPhone;
    std::string mDefaultApplication;
    std::unique_ptr<httplib::Server> mServer;
    std::thread mThread;
    int mPort = 0;
};
