// Servers on 127.0.0.1 for the tests that drive the real HTTP client, and the files they need.
#include "LoopbackServers.h"

#include <netinet/in.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <fcntl.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

const char* const kTempPrefix = "/tmp/agp-http-test-";

int bindLoopback(int& port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    socklen_t length = sizeof address;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
    port = ntohs(address.sin_port);
    return fd;
}

} // namespace

std::string makeTempDir() {
    std::string pattern = std::string(kTempPrefix) + "XXXXXX";
    const char* dir = mkdtemp(pattern.data());
    return dir != nullptr ? dir : "";
}

void removeTree(const std::string& dir) {
    if (!dir.empty() && dir.rfind(kTempPrefix, 0) == 0) {
        std::system(("rm -rf '" + dir + "'").c_str());
    }
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
}

int unusedPort() {
    int port = 0;
    ::close(bindLoopback(port));
    return port;
}

bool makeCertificate(const std::string& certPath, const std::string& keyPath) {
    EVP_PKEY* key = EVP_EC_gen("P-256");
    X509* cert = X509_new();
    bool ok = key != nullptr && cert != nullptr;
    if (ok) {
        X509_set_version(cert, 2);
        ASN1_INTEGER_set(X509_get_serialNumber(cert), 1);
        X509_gmtime_adj(X509_getm_notBefore(cert), -3600);
        X509_gmtime_adj(X509_getm_notAfter(cert), 24 * 3600);
        X509_set_pubkey(cert, key);
        X509_NAME* name = X509_get_subject_name(cert);
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>("127.0.0.1"), -1, -1, 0);
        X509_set_issuer_name(cert, name);
        X509V3_CTX context;
        X509V3_set_ctx_nodb(&context);
        X509V3_set_ctx(&context, cert, cert, nullptr, nullptr, 0);
        X509_EXTENSION* altNames =
            X509V3_EXT_conf_nid(nullptr, &context, NID_subject_alt_name, "IP:127.0.0.1,DNS:localhost");
        ok = altNames != nullptr && X509_add_ext(cert, altNames, -1) == 1;
        X509_EXTENSION_free(altNames);
        ok = ok && X509_sign(cert, key, EVP_sha256()) > 0;
    }
    if (ok) {
        FILE* certFile = std::fopen(certPath.c_str(), "w");
        FILE* keyFile = std::fopen(keyPath.c_str(), "w");
        ok = certFile != nullptr && keyFile != nullptr && PEM_write_X509(certFile, cert) == 1 &&
             PEM_write_PrivateKey(keyFile, key, nullptr, nullptr, 0, nullptr, nullptr) == 1;
        if (certFile != nullptr) {
            std::fclose(certFile);
        }
        if (keyFile != nullptr) {
            std::fclose(keyFile);
        }
    }
    X509_free(cert);
    EVP_PKEY_free(key);
    return ok;
}

ServerRunner::ServerRunner(httplib::Server& server) : mServer(server) {
    mPort = mServer.bind_to_any_port("127.0.0.1");
    mThread = std::thread([this] { mServer.listen_after_bind(); });
    for (int i = 0; i < 500 && !mServer.is_running(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

ServerRunner::~ServerRunner() {
    mServer.stop();
    mThread.join();
}

RawServer::RawServer(Responder responder) : mResponder(std::move(responder)) {
    mSocket = bindLoopback(mPort);
    ::listen(mSocket, 8);
    if (::pipe2(mStopPipe, O_CLOEXEC) != 0) {
        mStopPipe[0] = mStopPipe[1] = -1;
    }
    mThread = std::thread([this] { run(); });
}

RawServer::~RawServer() {
    const char stop = 's';
    (void)!::write(mStopPipe[1], &stop, 1);
    mThread.join();
    ::close(mSocket);
    ::close(mStopPipe[0]);
    ::close(mStopPipe[1]);
}

std::vector<std::string> RawServer::requestLines() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mRequestLines;
}

bool RawServer::waitReadable(int fd) {
    pollfd fds[2] = {{fd, POLLIN, 0}, {mStopPipe[0], POLLIN, 0}};
    while (::poll(fds, 2, -1) < 0) {
    }
    return (fds[1].revents & POLLIN) == 0;
}

void RawServer::run() {
    while (waitReadable(mSocket)) {
        const int client = ::accept4(mSocket, nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0) {
            serve(client);
        }
    }
}

void RawServer::serve(int client) {
    std::string request;
    char buffer[4096];
    while (request.find("\r\n\r\n") == std::string::npos && waitReadable(client)) {
        const ssize_t got = ::recv(client, buffer, sizeof buffer, 0);
        if (got <= 0) {
            break;
        }
        request.append(buffer, static_cast<size_t>(got));
    }
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mRequestLines.push_back(request.substr(0, request.find("\r\n")));
    }
    const Reply reply = mResponder(request);
    ::send(client, reply.bytes.data(), reply.bytes.size(), MSG_NOSIGNAL);
    if (reply.hold) {
        // Until the client gives up (its close reads as end of input) or the server stops.
        while (waitReadable(client) && ::recv(client, buffer, sizeof buffer, 0) > 0) {
        }
    }
    if (reply.drain > 0) {
        ::shutdown(client, SHUT_WR);
        for (std::size_t read = 0; read < reply.drain && waitReadable(client);) {
            const ssize_t got = ::recv(client, buffer, sizeof buffer, 0);
            if (got <= 0) {
                break;
            }
            read += static_cast<std::size_t>(got);
        }
    }
    if (reply.reset) {
        const linger abortive{1, 0};
        ::setsockopt(client, SOL_SOCKET, SO_LINGER, &abortive, sizeof abortive);
    }
    ::close(client);
}

TinyProxy::TinyProxy()
    : RawServer([](const std::string& request) {
          Reply reply;
          reply.bytes = request.rfind("CONNECT ", 0) == 0
                            ? "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"
                            : "HTTP/1.1 200 OK\r\nContent-Length: 9\r\nConnection: close\r\n\r\nvia proxy";
          return reply;
      }) {}
