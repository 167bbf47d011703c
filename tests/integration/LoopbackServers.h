// Servers on 127.0.0.1 for the tests that drive the real HTTP client, and the files they need.
#pragma once

#include <httplib.h>

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// A host name that can never be looked up: its first label is longer than 63 characters, so the
// resolver fails at once without asking any name server (tests send nothing off this machine).
constexpr const char* kUnresolvableHost =
    "unresolvable-xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx.invalid";

// A fresh directory under /tmp, and its removal (only of such a directory).
std::string makeTempDir();
void removeTree(const std::string& dir);

std::string readFile(const std::string& path);

// A loopback port on which nobody listens (bound, read, and closed again).
int unusedPort();

// A self-signed certificate for 127.0.0.1 and localhost, and its key, as PEM files.
bool makeCertificate(const std::string& certPath, const std::string& keyPath);

// Runs a cpp-httplib server (HTTP or HTTPS) on a free loopback port in its own thread.
class ServerRunner {
public:
    explicit ServerRunner(httplib::Server& server);
    ~ServerRunner();
    ServerRunner(const ServerRunner&) = delete;
    ServerRunner& operator=(const ServerRunner&) = delete;
    int port() const { return mPort; }
    std::string base() const { return "http://127.0.0.1:" + std::to_string(mPort); }

private:
    httplib::Server& mServer;
    int mPort = -1;
    std::thread mThread;
};

// A server on raw sockets for the faults a real HTTP server will not commit. It serves one
// connection at a time: reads the request head, writes what the responder returns, and closes the
// connection -- with a reset when asked, or, when asked to hold it, only once the client has gone
// or the server stops. Records every request line.
class RawServer {
public:
    struct Reply {
        std::string bytes;
        bool hold = false;     // keep the connection open, silent, after the bytes
        std::size_t drain = 0; // end our side of the stream, then read this much more input
        bool reset = false;    // close with a reset (unread input is dropped)
    };
    using Responder = std::function<Reply(const std::string& requestHead)>;

    explicit RawServer(Responder responder);
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    int port() const { return mPort; }
    std::string base() const { return "http://127.0.0.1:" + std::to_string(mPort); }
    std::vector<std::string> requestLines() const;

private:
    void run();
    void serve(int client);
    bool waitReadable(int fd); // false once the server stops

    Responder mResponder;
    int mSocket = -1;
    int mStopPipe[2] = {-1, -1};
    int mPort = 0;
    std::thread mThread;
    mutable std::mutex mMutex;
    std::vector<std::string> mRequestLines;
};

// A minimal HTTP proxy: answers a request in absolute form with "via proxy", and refuses every
// CONNECT (tunnel) with 403.
class TinyProxy : public RawServer {
public:
    TinyProxy();
};
