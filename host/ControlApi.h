// The phone's control API: JSON over HTTP for scripts, tests and the web page.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <thread>

class EmulatedPhone;
class PhoneJournal;

namespace httplib {
class Server;
}

// Every call and its answer are described, with examples, in docs/control-api.md.
class ControlApi {
public:
    static constexpr size_t kWorkers = 32;

    ControlApi(EmulatedPhone& phone, PhoneJournal& journal, const std::string& application);
    ~ControlApi();
    ControlApi(const ControlApi&) = delete;
    ControlApi& operator=(const ControlApi&) = delete;

    // Listens on host:port (0: any free port). False with the reason.
    bool start(const std::string& host, int port, std::string& problem);
    void stop();
    int port() const { return mPort; }
    // Set by POST /api/quit; the program ends when it sees it.
    bool quitRequested() const { return mQuit; }

    // Serves the web page's files from `folder` at "/"; before start. False without an index.html.
    bool serveWebPage(const std::string& folder);
    // Lets a front end serve its own routes on the same listener.
    httplib::Server& server() { return *mServer; }

private:
    void addRoutes();

    EmulatedPhone& mPhone;
    PhoneJournal& mJournal;
    std::string mApplication;
    std::unique_ptr<httplib::Server> mServer;
    std::thread mThread;
    int mPort = 0;
    std::atomic<bool> mQuit{false};
    std::atomic<bool> mStopping{false};
};
