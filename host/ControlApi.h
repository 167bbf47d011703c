// The phone's control API: JSON over HTTP for scripts, tests and the web page.
#pragma once

#include <atomic>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <thread>

#include "ListenerGuard.h"

class EmulatedPhone;
class PhoneJournal;

namespace httplib {
class Server;
struct Response;
} // namespace httplib

// Every call and its answer are described, with examples, in docs/control-api.md.
class ControlApi {
public:
    // Workers of the listener; event streams may take at most kMaxEventStreams of them, so the
    // calls always find one free.
    static constexpr size_t kWorkers = 48;
    static constexpr int kMaxEventStreams = 8;

    ControlApi(EmulatedPhone& phone, PhoneJournal& journal, const std::string& application);
    ~ControlApi();
    ControlApi(const ControlApi&) = delete;
    ControlApi& operator=(const ControlApi&) = delete;

    // Who may call, beyond the listener's own address; see ListenerGuard. Before start.
    ListenerGuard& guard() { return mGuard; }
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
    void handleCallAction(const nlohmann::json& body, httplib::Response& response);

    EmulatedPhone& mPhone;
    PhoneJournal& mJournal;
    std::string mApplication;
    std::unique_ptr<httplib::Server> mServer;
    std::thread mThread;
    int mPort = 0;
    std::atomic<bool> mQuit{false};
    std::atomic<bool> mStopping{false};
    std::atomic<int> mEventStreams{0};
    ListenerGuard mGuard;
};
