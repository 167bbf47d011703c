// From a key press to the next screen on the display, through the whole phone and a loopback server.
#include <benchmark/benchmark.h>
#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "EmulatedPhone.h"

namespace {

// Every request gets a text box titled with a new number, whose soft key asks for the next one.
std::string pageDocument(int number, int port) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><IppDisplay><IppScreen ID=\"1\" CommandCount=\"1\">"
           "<IppTextBox MaxSize=\"100\" Constraint=\"ANY\" Default=\"TEXT\"><Title>Page " +
           std::to_string(number) + "</Title><Url>http://127.0.0.1:" + std::to_string(port) +
           "/page</Url><Text>A page of the benchmark.</Text></IppTextBox>"
           "<IppCommand Type=\"SELECT\" DisplayOn=\"LISTITEM\" "
           "Priority=\"0\"><Label>Next</Label></IppCommand>"
           "</IppScreen></IppDisplay>";
}

std::string currentTitle(DisplayAPI::Display& display) {
    const nlohmann::json screen = display.snapshot().value("screen", nlohmann::json());
    return screen.is_object() && screen.value("title", nlohmann::json()).is_string()
               ? screen["title"].get<std::string>()
               : "";
}

void BM_KeyPressToNextScreen(benchmark::State& state) {
    httplib::Server server;
    std::atomic<int> pages{0};
    server.set_tcp_nodelay(true); // before the listening socket exists, or it does not apply
    int port = server.bind_to_any_port("127.0.0.1");
    server.Get(".*", [&](const httplib::Request&, httplib::Response& response) {
        response.set_content(pageDocument(++pages, port), "application/octet-stream");
    });
    std::thread listener([&] { server.listen_after_bind(); });
    while (!server.is_running()) {
        std::this_thread::yield();
    }

    PhoneOptions options;
    options.applicationName = "Bench-" + std::to_string(port);
    EmulatedPhone phone(options);
    phone.configuration().setValues({{"app-name-1", options.applicationName},
                                     {"server-addr-1", "127.0.0.1"},
                                     {"server-port-1", std::to_string(port)},
                                     {"transport-1", "http"},
                                     {"program-name-1", "page"},
                                     {"num-tabs-1", "0"},
                                     {"ipaddress", "127.0.0.1"},
                                     {"ip-protocol-mode", "IPv4"}});
    std::string error;
    if (!phone.loadPhonelet(AGP_PLUGIN_PATH, error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    std::mutex mutex;
    std::condition_variable changed;
    phone.display().setChangeListener([&] { changed.notify_all(); });
    phone.start();
    auto waitForTitle = [&](const std::string& title) {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(10),
                                [&] { return currentTitle(phone.display()) == title; });
    };
    if (!waitForTitle("Page 1")) {
        state.SkipWithError("the first page did not appear");
        return;
    }
    std::vector<double> micros;
    for (auto _ : state) {
        const std::string next = "Page " + std::to_string(pages + 1);
        const auto start = std::chrono::steady_clock::now();
        phone.display().pressKey(DisplayAPI::Key::SoftKey1);
        if (!waitForTitle(next)) {
            state.SkipWithError("the next page did not appear");
            break;
        }
        micros.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
    if (!micros.empty()) {
        std::sort(micros.begin(), micros.end());
        state.counters["median_us"] = micros[micros.size() / 2];
        state.counters["p99_us"] = micros[std::min(micros.size() - 1, micros.size() * 99 / 100)];
    }
    phone.stop();
    server.stop();
    listener.join();
}
BENCHMARK(BM_KeyPressToNextScreen)->Iterations(1000)->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace
