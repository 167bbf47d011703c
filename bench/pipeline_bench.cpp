// Request pipeline speed: a loopback GET through the server connection against bare libcurl, and
// the message queue's throughput.
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <httplib.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>

#include "AGPDataObserver.h"
#include "AGPMessage.h"
#include "AGPMessageQueue.h"
#include "AGPPhoneletManager.h"
#include "AGPServerConnection.h"
#include "config/ConfigurationStore.h"
#include "events/EventLoop.h"
#include "http/CurlHttpService.h"
#include "http/HttpServiceHeaders.h"
#include "threads/Threader.h"

namespace {

// Serves a 2 KB document on loopback. Octet-stream, so that nobody compresses it, and no Nagle
// delay between the header and body writes: either would swamp what is measured.
class DocumentServer {
public:
    DocumentServer() {
        mServer.set_tcp_nodelay(true);
        mServer.Get("/doc", [](const httplib::Request&, httplib::Response& response) {
            response.set_content(std::string(2048, 'd'), "application/octet-stream");
        });
        mPort = mServer.bind_to_any_port("127.0.0.1");
        mThread = std::thread([this] { mServer.listen_after_bind(); });
        while (!mServer.is_running()) {
            std::this_thread::yield();
        }
    }
    ~DocumentServer() {
        mServer.stop();
        mThread.join();
    }
    std::string url() const { return "http://127.0.0.1:" + std::to_string(mPort) + "/doc"; }

private:
    httplib::Server mServer;
    int mPort = 0;
    std::thread mThread;
};

void BM_GetThroughServerConnection(benchmark::State& state) {
    DocumentServer server;
    EventLoop loop;
    ConfigurationStore store(loop);
    store.setValues({{"app-name-1", "Bench-" + std::to_string(::getpid())}});
    AGPDataObserver* configuration = AGPPhoneletManager::getAGPDataObserver();
    configuration->startAGPDataObserver(&store);
    configuration->getXMLApplicationData("1");
    CurlHttpService http;
    AGPServerConnection* connection = AGPPhoneletManager::getAGPServerConnection();
    connection->startAGPServerConnection(&http);
    const std::string url = server.url();
    char* data = nullptr;
    unsigned int size = 0;
    for (auto _ : state) {
        HttpServiceHeaders headers;
        std::string error;
        if (connection->getHttpData(url, AGPServerConnection::XML_DOCUMENT, data, size, headers, error) !=
                1 ||
            size != 2048) {
            state.SkipWithError("request failed");
            break;
        }
    }
    delete[] data;
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 2048);
    AGPPhoneletManager::shutdownPhonelet();
}
BENCHMARK(BM_GetThroughServerConnection)->UseRealTime();

size_t collect(char* data, size_t size, size_t count, void* user) {
    static_cast<std::string*>(user)->append(data, size * count);
    return size * count;
}

void BM_GetWithBareCurl(benchmark::State& state) {
    DocumentServer server;
    curl_global_init(CURL_GLOBAL_DEFAULT);
    CURL* easy = curl_easy_init();
    std::string body;
    const std::string url = server.url();
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, collect);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &body);
    curl_easy_setopt(easy, CURLOPT_PROXY, "");
    for (auto _ : state) {
        body.clear();
        if (curl_easy_perform(easy) != CURLE_OK || body.size() != 2048) {
            state.SkipWithError("request failed");
            break;
        }
    }
    curl_easy_cleanup(easy);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 2048);
}
BENCHMARK(BM_GetWithBareCurl)->UseRealTime();

// Counts what its thread takes instead of processing it.
class CountingQueue : public AGPMessageQueue {
public:
    CountingQueue() : AGPMessageQueue(0) {}
    bool getMsgFromQ(AGPMessage& msg) override {
        if (AGPMessageQueue::getMsgFromQ(msg)) {
            mTaken.fetch_add(1, std::memory_order_release);
        }
        return false;
    }
    std::atomic<long> mTaken{0};
};

// A producer adds a batch of 100 messages (the queue's limit for commands), the queue's thread
// takes them; one iteration ends when the batch has been taken.
void BM_QueueAddAndTake(benchmark::State& state) {
    CountingQueue queue;
    Threader threader;
    unsigned long thread = 0;
    threader.start(&thread, &queue, "", 1, 0);
    const AGPMessage message(AGPMessage::Command_OK, "http://server.example/app?key=value");
    long added = 0;
    for (auto _ : state) {
        for (int i = 0; i < 100; ++i) {
            AGPMessage copy = message;
            copy.id = static_cast<std::uint32_t>(added);
            added += queue.addToMsgQ(copy) ? 1 : 0;
        }
        while (queue.mTaken.load(std::memory_order_acquire) < added) {
            std::this_thread::yield();
        }
    }
    queue.stopReadingQueue();
    threader.wait(thread);
    state.SetItemsProcessed(added);
}
BENCHMARK(BM_QueueAddAndTake)->UseRealTime();

} // namespace
