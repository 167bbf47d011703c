// From a key press to the next screen on the display, through the whole phone and a loopback server.
#include <benchmark/benchmark.h>
#include <expat.h>
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

// Five screens; the first holds a form of 50 text fields, the others small text boxes.
std::string formDocument(int number, int port) {
    const std::string url = "http://127.0.0.1:" + std::to_string(port) + "/form";
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><IppDisplay InitialScreen=\"1\">"
                      "<IppScreen ID=\"1\" CommandCount=\"1\"><IppForm ItemCount=\"50\"><Title>Form " +
                      std::to_string(number) + "</Title><Url>" + url + "</Url>";
    for (int i = 0; i < 50; ++i) {
        xml += "<IppTextField Key=\"field" + std::to_string(i) + "\" Default=\"TEXT\"><Label>Field " +
               std::to_string(i) + "</Label><Text>value " + std::to_string(i) + "</Text></IppTextField>";
    }
    xml += "</IppForm><IppCommand Type=\"SELECT\" Priority=\"0\"><Label>Next</Label>"
           "</IppCommand></IppScreen>";
    for (int screen = 2; screen <= 5; ++screen) {
        xml += "<IppScreen ID=\"" + std::to_string(screen) +
               "\"><IppTextBox MaxSize=\"100\" Default=\"TEXT\"><Title>Screen " + std::to_string(screen) +
               "</Title><Text>Another screen of the document.</Text></IppTextBox></IppScreen>";
    }
    return xml + "</IppDisplay>";
}

std::string currentTitle(DisplayAPI::Display& display) {
    const nlohmann::json screen = display.snapshot().value("screen", nlohmann::json());
    return screen.is_object() && screen.value("title", nlohmann::json()).is_string()
               ? screen["title"].get<std::string>()
               : "";
}

// Serves a new document per request; a soft key on each screen asks for the next one, whose
// title carries the next number.
void pressForNextScreens(benchmark::State& state, std::string (*makeDocument)(int, int),
                         const std::string& prefix, const std::string& program) {
    httplib::Server server;
    std::atomic<int> pages{0};
    server.set_tcp_nodelay(true); // before the listening socket exists, or it does not apply
    int port = server.bind_to_any_port("127.0.0.1");
    server.Get(".*", [&](const httplib::Request&, httplib::Response& response) {
        response.set_content(makeDocument(++pages, port), "application/octet-stream");
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
                                     {"program-name-1", program},
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
    if (!waitForTitle(prefix + "1")) {
        state.SkipWithError("the first page did not appear");
        return;
    }
    std::vector<double> micros;
    for (auto _ : state) {
        const std::string next = prefix + std::to_string(pages + 1);
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
void BM_KeyPressToNextScreen(benchmark::State& state) {
    pressForNextScreens(state, pageDocument, "Page ", "page");
}
BENCHMARK(BM_KeyPressToNextScreen)->Iterations(1000)->UseRealTime()->Unit(benchmark::kMicrosecond);

// A five-screen document with a 50-item form fetched, parsed, installed and shown per key press.
void BM_KeyPressToFiveScreenFormDocument(benchmark::State& state) {
    pressForNextScreens(state, formDocument, "Form ", "form");
}
BENCHMARK(BM_KeyPressToFiveScreenFormDocument)->Iterations(300)->UseRealTime()->Unit(benchmark::kMicrosecond);

void emptyStart(void*, const char*, const char**) {}
void emptyEnd(void*, const char*) {}
void emptyText(void*, const char*, int) {}

// Bare expat over the same bytes, for comparison.
void BM_BareExpatFiveScreenFormDocument(benchmark::State& state) {
    const std::string xml = formDocument(1, 8080);
    for (auto _ : state) {
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetElementHandler(parser, emptyStart, emptyEnd);
        XML_SetCharacterDataHandler(parser, emptyText);
        benchmark::DoNotOptimize(XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), 1));
        XML_ParserFree(parser);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * xml.size()));
    state.counters["bytes"] = static_cast<double>(xml.size());
}
BENCHMARK(BM_BareExpatFiveScreenFormDocument)->Unit(benchmark::kMicrosecond);

} // namespace
