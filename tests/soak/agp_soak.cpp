// A soak against a running `agp-phone --demo`: random keys and pushes on several connections at
// once, every answer checked, resident memory compared before and after.

#include <CLI/CLI.hpp>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <httplib.h>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"

namespace {

using nlohmann::json;

// agp-phone gives freed memory back once its screen has been quiet for a second.
constexpr std::chrono::milliseconds kQuietTrim(1500);

// The port in the first line of `phone`'s output that matches `pattern`; 0 without one.
int portFrom(ChildProcess& phone, const std::string& pattern) {
    const std::string port = phone.waitForOutput(pattern);
    return port.empty() ? 0 : std::stoi(port);
}

struct Options {
    std::string agpPhone;
    int keys = 10000;
    int pushes = 10000;
    int connections = 8;
    int warmUpKeys = 500;
    int warmUpPushes = 600;
    // 0: report the growth without judging it.
    long maxGrowthKb = 1024;
    unsigned seed = 1;
};

// Every answer that is not what the documentation promises, counted and the first few kept.
class Faults {
public:
    void add(const std::string& what) {
        std::lock_guard<std::mutex> lock(mMutex);
        if (++mCount <= 10) {
            std::fprintf(stderr, "agp-soak: %s\n", what.c_str());
        }
    }
    int count() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCount;
    }

private:
    std::mutex mMutex;
    int mCount = 0;
};

const char* const kKeys[] = {"up", "down", "down",     "left",     "right",    "ok",
                             "ok", "back", "softkey1", "softkey2", "softkey3", "softkey4",
                             "1",  "2",    "5",        "9",        "*",        "#"};
const char* const kPushTypes[] = {"active", "force", "queue", "indicate"};

void pressKeys(int port, int count, unsigned seed, Faults& faults) {
    httplib::Client api("127.0.0.1", port);
    api.set_read_timeout(30);
    std::mt19937 random(seed);
    std::uniform_int_distribution<size_t> pick(0, sizeof kKeys / sizeof kKeys[0] - 1);
    for (int i = 0; i < count; ++i) {
        const json body = {{"keys", {kKeys[pick(random)]}}};
        auto answer = api.Post("/api/keys", body.dump(), "application/json");
        if (!answer) {
            faults.add("key " + std::to_string(i) + ": no answer (" + httplib::to_string(answer.error()) +
                       ")");
        } else if (answer->status != 200 || answer->body.find("\"handled\"") == std::string::npos) {
            faults.add("key " + std::to_string(i) + ": " + std::to_string(answer->status) + " " +
                       answer->body);
        }
    }
}

// Pushes spread over `connections` kept-alive connections; each answer must be 200 "accepted",
// or 409 when the application refuses it (an error document on show).
void push(int port, int demoPort, int count, int connections, Faults& faults, std::map<int, int>& statuses) {
    std::mutex statusLock;
    std::vector<std::thread> senders;
    for (int connection = 0; connection < connections; ++connection) {
        senders.emplace_back([&, connection] {
            httplib::Client pusher("127.0.0.1", port);
            pusher.set_keep_alive(true);
            pusher.set_read_timeout(30);
            for (int i = connection; i < count; i += connections) {
                const std::string form = "ServerAddr=127.0.0.1&ServerPort=" + std::to_string(demoPort) +
                                         "&ProgramName=demo/pushed.xml&Type=" + kPushTypes[i % 4];
                auto answer = pusher.Post("/push", form, "application/x-www-form-urlencoded");
                if (!answer) {
                    faults.add("push " + std::to_string(i) + ": no answer (" +
                               httplib::to_string(answer.error()) + ")");
                    continue;
                }
                {
                    std::lock_guard<std::mutex> lock(statusLock);
                    ++statuses[answer->status];
                }
                const bool accepted =
                    answer->status == 200 && answer->body.find("accepted") != std::string::npos;
                if (!accepted && answer->status != 409) {
                    faults.add("push " + std::to_string(i) + ": " + std::to_string(answer->status) + " " +
                               answer->body);
                }
            }
        });
    }
    for (std::thread& sender : senders) {
        sender.join();
    }
}

// Keys and pushes at once.
void soak(int apiPort, int pushPort, int demoPort, int keys, int pushes, const Options& options,
          unsigned seed, Faults& faults, std::map<int, int>& statuses) {
    std::thread keyPresser([&] { pressKeys(apiPort, keys, seed, faults); });
    push(pushPort, demoPort, pushes, options.connections, faults, statuses);
    keyPresser.join();
}

bool waitUntilIdle(int apiPort) {
    httplib::Client api("127.0.0.1", apiPort);
    api.set_read_timeout(70);
    auto answer = api.Get("/api/idle?timeout=60000");
    return answer && answer->status == 200;
}

// The demo server's port, from the first request the phone made.
int demoServerPort(int apiPort) {
    httplib::Client api("127.0.0.1", apiPort);
    for (int i = 0; i < 500; ++i) {
        auto answer = api.Get("/api/requests");
        if (answer && answer->status == 200) {
            const json requests = json::parse(answer->body, nullptr, false);
            if (requests.is_array() && !requests.empty()) {
                std::smatch match;
                const std::string url = requests[0].value("url", "");
                if (std::regex_search(url, match, std::regex(R"(^http://127\.0\.0\.1:(\d+)/)"))) {
                    return std::stoi(match[1].str());
                }
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return 0;
}

int run(const Options& options) {
    ChildProcess phone(options.agpPhone,
                       {"--demo", "--headless", "--http", "127.0.0.1:0", "--push", "127.0.0.1:0"});
    if (!phone.started()) {
        std::fprintf(stderr, "agp-soak: cannot start %s\n", options.agpPhone.c_str());
        return 2;
    }
    const int apiPort = portFrom(phone, R"(control API at http://127\.0\.0\.1:(\d+)/)");
    const int pushPort = portFrom(phone, R"(pushes to http://127\.0\.0\.1:(\d+)/push)");
    const int demoPort = apiPort != 0 ? demoServerPort(apiPort) : 0;
    if (apiPort == 0 || pushPort == 0 || demoPort == 0) {
        std::fprintf(stderr, "agp-soak: agp-phone did not say where it listens\n");
        return 2;
    }
    Faults faults;
    std::map<int, int> statuses;
    // Warm-up fills what is bounded (the journal's requests, log lines and pushes, the caches).
    soak(apiPort, pushPort, demoPort, options.warmUpKeys, options.warmUpPushes, options, options.seed, faults,
         statuses);
    waitUntilIdle(apiPort);
    std::this_thread::sleep_for(kQuietTrim);
    const long before = phone.residentKb();
    const auto started = std::chrono::steady_clock::now();
    soak(apiPort, pushPort, demoPort, options.keys, options.pushes, options, options.seed + 1, faults,
         statuses);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    const bool settled = waitUntilIdle(apiPort);
    std::this_thread::sleep_for(kQuietTrim);
    const long after = phone.residentKb();
    const bool alive = phone.alive();

    std::printf("agp-soak: %d keys and %d pushes on %d connections in %.1f s\n", options.keys, options.pushes,
                options.connections, seconds);
    for (const auto& entry : statuses) {
        std::printf("agp-soak: push answers %d: %d\n", entry.first, entry.second);
    }
    std::printf("agp-soak: resident memory %ld kB after warm-up, %ld kB after the soak (%+ld kB)\n", before,
                after, after - before);
    int failures = faults.count();
    if (!alive) {
        std::fprintf(stderr, "agp-soak: agp-phone ended during the soak\n");
        ++failures;
    }
    if (!settled) {
        std::fprintf(stderr, "agp-soak: agp-phone did not settle within a minute after the soak\n");
        ++failures;
    }
    if (options.maxGrowthKb > 0 && after - before > options.maxGrowthKb) {
        std::fprintf(stderr, "agp-soak: resident memory grew by %ld kB, more than %ld kB\n", after - before,
                     options.maxGrowthKb);
        ++failures;
    }
    if (alive) {
        httplib::Client api("127.0.0.1", apiPort);
        api.Post("/api/quit", "{}", "application/json");
        const int status = phone.wait();
        if (status != 0) {
            std::fprintf(stderr, "agp-soak: agp-phone ended with status %d after quit\n", status);
            ++failures;
        }
    }
    std::printf("agp-soak: %s (%d faults)\n", failures == 0 ? "passed" : "FAILED", failures);
    return failures == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app{"agp-soak: random keys and pushes at once against agp-phone --demo"};
    app.add_option("--agp-phone", options.agpPhone, "Path of the agp-phone program")->required();
    app.add_option("--keys", options.keys, "Keys pressed after the warm-up")->check(CLI::Range(0, 10000000));
    app.add_option("--pushes", options.pushes, "Pushes sent after the warm-up")
        ->check(CLI::Range(0, 10000000));
    app.add_option("--connections", options.connections, "Connections the pushes share")
        ->check(CLI::Range(1, 64));
    app.add_option("--warm-up-keys", options.warmUpKeys)->check(CLI::Range(0, 1000000));
    app.add_option("--warm-up-pushes", options.warmUpPushes)->check(CLI::Range(0, 1000000));
    app.add_option("--max-growth-kb", options.maxGrowthKb, "Largest resident growth allowed (0: only report)")
        ->check(CLI::Range(0L, 100000000L));
    app.add_option("--seed", options.seed, "Seed of the random keys");
    CLI11_PARSE(app, argc, argv);
    signal(SIGPIPE, SIG_IGN);
    return run(options);
}
