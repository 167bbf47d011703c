// Who the emulator's listeners obey: their own user on their own address, and nobody else.
#pragma once

#include <set>
#include <string>

namespace httplib {
class Server;
struct Request;
struct Response;
} // namespace httplib

// A web page in the developer's browser may send requests to loopback addresses, and a page whose
// name is re-bound to 127.0.0.1 (DNS rebinding) may even read the answers. The guard refuses:
//   - a Host that is not the listener's address: its bound address with its port, "localhost"
//     for a loopback listener, any numeric address for a listener on every address (a numeric
//     Host cannot be re-bound), or a name added with addName (403);
//   - a request that changes state (any method but GET and HEAD) from a foreign Origin (403) or
//     without the media type application/json (415, unless setJsonBodiesOnly(false));
//   - beyond loopback, with a token set: a request without it (401). The token comes as
//     "Authorization: Bearer TOKEN", or as the cookie agp-token, which a GET with ?token=TOKEN sets
//     (so a browser opens http://HOST:PORT/?token=TOKEN once and the page then works as usual).
// Configure it before the listener starts; admits() is then called from any worker thread.
class ListenerGuard {
public:
    static constexpr const char* kTokenCookie = "agp-token";

    // 127.0.0.0/8, ::1 and "localhost".
    static bool isLoopback(const std::string& host);
    // Idle and slow connections give their worker back within seconds.
    static void limitIdleConnections(httplib::Server& server);

    void setListener(const std::string& host, int port);
    void addName(const std::string& name);
    void setToken(const std::string& token) { mToken = token; }
    // Off for a listener whose callers send other bodies (the push listener's forms).
    void setJsonBodiesOnly(bool only) { mJsonBodiesOnly = only; }

    // True when the request may go on; otherwise the response holds the refusal.
    bool admits(const httplib::Request& request, httplib::Response& response) const;

private:
    bool isOwnAuthority(const std::string& authority) const;
    bool hasToken(const httplib::Request& request, httplib::Response& response) const;

    std::string mHost;
    int mPort = 0;
    bool mAnyAddress = false;
    std::set<std::string> mNames;
    std::string mToken;
    bool mJsonBodiesOnly = true;
};
