// A loopback application server for the integration tests: serves documents, records requests.
#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>
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
            response.set_content(documentFor(request.path), "text/xml");
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
    // Path and query of every request, in arrival order.
    std::vector<std::string> requests() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mRequests;
    }
    bool waitForRequests(size_t count) {
        for (int i = 0; i < 500 && requests().size() < count; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return requests().size() >= count;
    }

private:
    std::string documentFor(const std::string& path) {
        std::lock_guard<std::mutex> lock(mMutex);
        auto found = mDocuments.find(path);
        return found != mDocuments.end() ? found->second : mDocument;
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
};
