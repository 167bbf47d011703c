// The demo's application server: serves apps/demo and a few pages that answer what the phone sent.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <thread>

class EmulatedPhone;

namespace httplib {
class Server;
}

// Documents are the folder's .xml files with {{base}} replaced by this server's address. Dynamic
// pages: /demo/menu?page=NAME answers with NAME.xml, /demo/echo shows the pairs it received,
// /demo/push answers at once and pushes pushed.xml to the phone three seconds later.
class DemoServer {
public:
    explicit DemoServer(const std::string& folder);
    ~DemoServer();
    DemoServer(const DemoServer&) = delete;
    DemoServer& operator=(const DemoServer&) = delete;

    // Listens on a free loopback port. False with the reason.
    bool start(std::string& problem);
    void stop();
    int port() const { return mPort; }
    // The phone the push page pushes to; set before the first request.
    void setPhone(EmulatedPhone* phone, const std::string& application);

private:
    std::string document(const std::string& name) const;
    void pushLater();

    std::string mFolder;
    std::unique_ptr<httplib::Server> mServer;
    std::thread mThread;
    std::thread mPusher;
    int mPort = 0;
    EmulatedPhone* mPhone = nullptr;
    std::string mApplication;
};
