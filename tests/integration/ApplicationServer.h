// A loopback application server for the integration tests: serves documents, records requests.
#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// A loopback application server that records every request it receives.
class ApplicationServer {
public:
    ApplicationServer() {
        mServer.Get(".*", [this](const httplib::Request& request, httplib::Response& response) {
            record(request);
            if (request.path == "/slow") {
                // Answers only when the test ends, like a server that hangs.
                std::unique_lock<std::mutex> lock(mMutex);
                mReleased.wait(lock, [this] { return mReleaseSlow; });
            }
            for (const auto& header : headersFor(request.path)) {
                response.set_header(header.first, header.second);
            }
            Reply raw;
            if (rawReplyFor(request.path, raw)) {
                response.status = raw.status;
                response.set_content(raw.body, raw.contentType);
                return;
            }
            response.set_content(documentFor(request.path), "text/xml");
        });
        // Remote traces and other uploads: recorded with their bodies, answered empty.
        mServer.Post(".*", [this](const httplib::Request& request, httplib::Response&) {
            std::lock_guard<std::mutex> lock(mMutex);
            mPosts.emplace_back(request.path, request.body);
        });
        mPort = mServer.bind_to_any_port("127.0.0.1");
        mThread = std::thread([this] { mServer.listen_after_bind(); });
        while (!mServer.is_running()) {
            std::this_thread::yield();
        }
    }
    ~ApplicationServer() {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            mReleaseSlow = true;
        }
        mReleased.notify_all();
        mServer.stop();
        mThread.join();
    }

    int port() const { return mPort; }
    // The reply to every path that has no document of its own.
    void setDocument(const std::string& document) {
        std::lock_guard<std::mutex> lock(mMutex);
        mDocument = document;
    }
    // The reply to one path (without query), e.g. "/app/start".
    void setDocument(const std::string& path, const std::string& document) {
        std::lock_guard<std::mutex> lock(mMutex);
        mDocuments[path] = document;
    }
    // Extra response headers for one path, e.g. {"Cache-Control", "max-age=600"}.
    void setHeaders(const std::string& path,
                    const std::vector<std::pair<std::string, std::string>>& headers) {
        std::lock_guard<std::mutex> lock(mMutex);
        mHeaders[path] = headers;
    }
    // Makes requests to "/slow" hang again until the next releaseSlow.
    void holdSlow() {
        std::lock_guard<std::mutex> lock(mMutex);
        mReleaseSlow = false;
    }
    // Lets every request to "/slow" answer, now and from here on.
    void releaseSlow() {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            mReleaseSlow = true;
        }
        mReleased.notify_all();
    }
    // Path and body of every POST, in arrival order.
    std::vector<std::pair<std::string, std::string>> posts() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mPosts;
    }
    // Waits (5 s at most) for a POST to `path` whose body holds `text`.
    bool waitForPost(const std::string& path, const std::string& text) {
        for (int i = 0; i < 500; ++i) {
            for (const auto& post : posts()) {
                if (post.first == path && post.second.find(text) != std::string::npos) {
                    return true;
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    // Any reply (a picture, an error status) to one path.
    void setReply(const std::string& path, const std::string& body, const std::string& contentType,
                  int status = 200) {
        std::lock_guard<std::mutex> lock(mMutex);
        mReplies[path] = Reply{body, contentType, status};
    }
    // How many requests named `path` (query ignored).
    size_t requestCount(const std::string& path) {
        std::lock_guard<std::mutex> lock(mMutex);
        size_t count = 0;
        for (const std::string& request : mRequests) {
            count += request.substr(0, request.find('?')) == path ? 1 : 0;
        }
        return count;
    }
    // Path and query of every request, in arrival order.
    std::vector<std::string> requests() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mRequests;
    }
    bool waitForRequests(size_t count, std::chrono::milliseconds limit = std::chrono::milliseconds(5000)) {
        const auto end = std::chrono::steady_clock::now() + limit;
        while (requests().size() < count && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return requests().size() >= count;
    }

    // The reply to `path`.
    std::string documentFor(const std::string& path) {
        std::lock_guard<std::mutex> lock(mMutex);
        auto found = mDocuments.find(path);
        return found != mDocuments.end() ? found->second : mDocument;
    }

private:
    struct Reply {
        std::string body;
        std::string contentType;
        int status = 200;
    };
    bool rawReplyFor(const std::string& path, Reply& reply) {
        std::lock_guard<std::mutex> lock(mMutex);
        auto found = mReplies.find(path);
        if (found == mReplies.end()) {
            return false;
        }
        reply = found->second;
        return true;
    }
    std::vector<std::pair<std::string, std::string>> headersFor(const std::string& path) {
        std::lock_guard<std::mutex> lock(mMutex);
        auto found = mHeaders.find(path);
        return found != mHeaders.end() ? found->second : std::vector<std::pair<std::string, std::string>>();
    }
    void record(const httplib::Request& request) {
        std::string query;
        for (const auto& parameter : request.params) {
            query += (query.empty() ? "?" : "&") + parameter.first + "=" + parameter.second;
        }
        std::lock_guard<std::mutex> lock(mMutex);
        mRequests.push_back(request.path + query);
    }

    httplib::Server mServer;
    int mPort = 0;
    std::thread mThread;
    std::mutex mMutex;
    std::vector<std::string> mRequests;
    std::condition_variable mReleased;
    bool mReleaseSlow = false;
    // An empty reply installs nothing, so the phonelet stays open to pushes.
    std::string mDocument;
    std::map<std::string, std::string> mDocuments;
    std::map<std::string, std::vector<std::pair<std::string, std::string>>> mHeaders;
    std::vector<std::pair<std::string, std::string>> mPosts;
    std::map<std::string, Reply> mReplies;
};
