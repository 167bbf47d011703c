// Who the emulator's listeners obey: their own user on their own address, and nobody else.
#include "ListenerGuard.h"

#include <arpa/inet.h>
#include <httplib.h>

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>

namespace {

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    const size_t last = text.find_last_not_of(" \t");
    return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

bool isNumericAddress(const std::string& host) {
    std::string bare = host;
    if (bare.size() > 2 && bare.front() == '[' && bare.back() == ']') {
        bare = bare.substr(1, bare.size() - 2);
    }
    unsigned char address[16];
    return inet_pton(AF_INET, bare.c_str(), address) == 1 || inet_pton(AF_INET6, bare.c_str(), address) == 1;
}

// "host:port" or "[v6]:port" into its parts; false without a port.
bool splitAuthority(const std::string& authority, std::string& host, int& port) {
    const size_t colon = authority.rfind(':');
    if (colon == std::string::npos || colon + 1 >= authority.size() || colon + 6 < authority.size() ||
        authority.find_first_not_of("0123456789", colon + 1) != std::string::npos) {
        return false;
    }
    host = authority.substr(0, colon);
    port = std::stoi(authority.substr(colon + 1));
    return !host.empty() && (host.find(':') == std::string::npos || host.front() == '[');
}

void refuse(httplib::Response& response, int status, const std::string& reason) {
    response.status = status;
    response.set_content(nlohmann::json{{"error", reason}}.dump(), "application/json");
}

} // namespace

bool ListenerGuard::isLoopback(const std::string& host) {
    if (host == "localhost" || host == "::1" || host == "[::1]") {
        return true;
    }
    in_addr address{};
    return inet_pton(AF_INET, host.c_str(), &address) == 1 && (ntohl(address.s_addr) >> 24) == 127;
}

void ListenerGuard::limitIdleConnections(httplib::Server& server) {
    server.set_keep_alive_timeout(2);
    server.set_read_timeout(5, 0);
    server.set_write_timeout(5, 0);
}

void ListenerGuard::setListener(const std::string& host, int port) {
    mHost = lowerCase(host.find(':') != std::string::npos && host.front() != '[' ? "[" + host + "]" : host);
    mPort = port;
    mAnyAddress = host == "0.0.0.0" || host == "::" || host == "[::]";
}

void ListenerGuard::addName(const std::string& name) {
    mNames.insert(lowerCase(name));
}

bool ListenerGuard::isOwnAuthority(const std::string& authority) const {
    std::string host;
    int port = 0;
    if (!splitAuthority(lowerCase(authority), host, port) || port != mPort) {
        return false;
    }
    return host == mHost || mNames.count(host) > 0 || (host == "localhost" && isLoopback(mHost)) ||
           (mAnyAddress && isNumericAddress(host));
}

bool ListenerGuard::hasToken(const httplib::Request& request, httplib::Response& response) const {
    if (mToken.empty()) {
        return true;
    }
    if (request.get_header_value("Authorization") == "Bearer " + mToken) {
        return true;
    }
    const std::string cookies = request.get_header_value("Cookie");
    size_t start = 0;
    while (start < cookies.size()) {
        const size_t end = std::min(cookies.find(';', start), cookies.size());
        if (trimmed(cookies.substr(start, end - start)) == std::string(kTokenCookie) + "=" + mToken) {
            return true;
        }
        start = end + 1;
    }
    if ((request.method == "GET" || request.method == "HEAD") && request.get_param_value("token") == mToken) {
        response.set_header("Set-Cookie",
                            std::string(kTokenCookie) + "=" + mToken + "; Path=/; HttpOnly; SameSite=Strict");
        return true;
    }
    return false;
}

bool ListenerGuard::admits(const httplib::Request& request, httplib::Response& response) const {
    const std::string host = request.get_header_value("Host");
    if (!isOwnAuthority(host)) {
        refuse(response, 403, "Host '" + host + "' is not this listener's address");
        return false;
    }
    if (!hasToken(request, response)) {
        refuse(response, 401, "this listener needs its token (Authorization: Bearer TOKEN)");
        return false;
    }
    if (request.method == "GET" || request.method == "HEAD") {
        return true;
    }
    if (request.has_header("Origin")) {
        const std::string origin = request.get_header_value("Origin");
        const std::string prefix = "http://";
        if (origin.compare(0, prefix.size(), prefix) != 0 || !isOwnAuthority(origin.substr(prefix.size()))) {
            refuse(response, 403, "requests from the page at '" + origin + "' are not obeyed");
            return false;
        }
    }
    // Calls that carry a body carry JSON; a DELETE names what it removes in its query.
    const bool carriesBody = request.method != "DELETE";
    const std::string type = request.get_header_value("Content-Type");
    if (mJsonBodiesOnly && carriesBody &&
        lowerCase(trimmed(type.substr(0, type.find(';')))) != "application/json") {
        refuse(response, 415, "the body must be application/json, not '" + type + "'");
        return false;
    }
    return true;
}
