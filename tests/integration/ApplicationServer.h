// A loopback application server for the integration tests: serves one document, records requests.
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
            const auto perPath = mDocuments.find(request.path);
            response.set_content(perPath != mDocuments.end() ? perPath->second : mDocument, "text/xml");
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
    // Set before the first request: the handler reads it unlocked.
    void setDocument(const std::string& document) { mDocument = document; }
    // The document served for one path instead of the common one; also set before the first request.
    void setDocument(const std::string& path, const std::string& document) { mDocuments[path] = document; }
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
    std::string mDocument = "<Text>not a screen</Text>";
    std::map<std::string, std::string> mDocuments;
};
