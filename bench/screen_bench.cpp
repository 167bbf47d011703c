// From a key press to the next screen on the display (and to the web page's event stream), through
// the whole phone and a loopback server.
#include <benchmark/benchmark.h>
#include <expat.h>
#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "ControlApi.h"
#include "EmulatedPhone.h"
#include "PhoneJournal.h"

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

// A loopback application server that serves a new document per request, and the phone with the
// plug-in loaded against it. A soft key on each screen asks for the next document, whose title
// carries the next number.
class BenchRig {
public:
    BenchRig(std::string (*makeDocument)(int, int), const std::string& program) {
        mServer.set_tcp_nodelay(true); // before the listening socket exists, or it does not apply
        const int port = mServer.bind_to_any_port("127.0.0.1");
        mServer.Get(".*", [this, makeDocument, port](const httplib::Request&, httplib::Response& response) {
            response.set_content(makeDocument(++mPages, port), "application/octet-stream");
        });
        mListener = std::thread([this] { mServer.listen_after_bind(); });
        while (!mServer.is_running()) {
            std::this_thread::yield();
        }
        PhoneOptions options;
        options.applicationName = "Bench-" + std::to_string(port);
        mPhone.reset(new EmulatedPhone(options));
        mPhone->configuration().setValues({{"app-name-1", options.applicationName},
                                           {"server-addr-1", "127.0.0.1"},
                                           {"server-port-1", std::to_string(port)},
                                           {"transport-1", "http"},
                                           {"program-name-1", program},
                                           {"num-tabs-1", "0"},
                                           {"ipaddress", "127.0.0.1"},
                                           {"ip-protocol-mode", "IPv4"}});
    }
    ~BenchRig() {
        mPhone->stop();
        mServer.stop();
        mListener.join();
    }

    EmulatedPhone& phone() { return *mPhone; }
    int pages() const { return mPages; }

private:
    httplib::Server mServer;
    std::atomic<int> mPages{0};
    std::thread mListener;
    std::unique_ptr<EmulatedPhone> mPhone;
};

void reportPercentiles(benchmark::State& state, std::vector<double>& micros) {
    if (!micros.empty()) {
        std::sort(micros.begin(), micros.end());
        state.counters["median_us"] = micros[micros.size() / 2];
        state.counters["p99_us"] = micros[std::min(micros.size() - 1, micros.size() * 99 / 100)];
    }
}

// Presses the soft key once per iteration; `waitForTitle` tells when the next title has arrived.
void pressForNextScreens(benchmark::State& state, BenchRig& rig, const std::string& prefix,
                         const std::function<bool(const std::string&)>& waitForTitle) {
    if (!waitForTitle(prefix + "1")) {
        state.SkipWithError("the first page did not appear");
        return;
    }
    std::vector<double> micros;
    for (auto _ : state) {
        const std::string next = prefix + std::to_string(rig.pages() + 1);
        const auto start = std::chrono::steady_clock::now();
        rig.phone().display().pressKey(DisplayAPI::Key::SoftKey1);
        if (!waitForTitle(next)) {
            state.SkipWithError("the next page did not appear");
            break;
        }
        micros.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
    reportPercentiles(state, micros);
}

// The display's change notices wake the wait; the notice takes the lock so that none is lost
// between a look at the title and the wait.
void pressForNextScreens(benchmark::State& state, std::string (*makeDocument)(int, int),
                         const std::string& prefix, const std::string& program) {
    BenchRig rig(makeDocument, program);
    std::string error;
    if (!rig.phone().loadPhonelet(AGP_PLUGIN_PATH, error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    std::mutex mutex;
    std::condition_variable changed;
    rig.phone().display().setChangeListener([&] {
        std::lock_guard<std::mutex> lock(mutex);
        changed.notify_all();
    });
    rig.phone().start();
    pressForNextScreens(state, rig, prefix, [&](const std::string& title) {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(10),
                                [&] { return currentTitle(rig.phone().display()) == title; });
    });
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

// The same key press as the web page sees it: until the event stream of the control API has
// delivered the screen event with the next title to a client on loopback.
void BM_KeyPressToEventStream(benchmark::State& state) {
    BenchRig rig(pageDocument, "page");
    PhoneJournal journal;
    std::string error;
    if (!rig.phone().loadPhonelet(AGP_PLUGIN_PATH, error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    rig.phone().display().setChangeListener([&] { journal.screenChanged(); });
    ControlApi control(rig.phone(), journal, rig.phone().context().getApplicationName());
    if (!control.start("127.0.0.1", 0, error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    std::mutex mutex;
    std::condition_variable arrived;
    std::string received;
    httplib::Client client("127.0.0.1", control.port());
    std::thread reader([&] {
        client.Get("/api/events", [&](const char* data, size_t length) {
            std::lock_guard<std::mutex> lock(mutex);
            received.append(data, length);
            arrived.notify_all();
            return true;
        });
    });
    rig.phone().start();
    pressForNextScreens(state, rig, "Page ", [&](const std::string& title) {
        std::unique_lock<std::mutex> lock(mutex);
        const std::string wanted = "\"title\":\"" + title + "\"";
        const bool seen = arrived.wait_for(lock, std::chrono::seconds(10),
                                           [&] { return received.find(wanted) != std::string::npos; });
        received.clear(); // what came before is done with; later searches stay short
        return seen;
    });
    client.stop();
    reader.join();
    control.stop();
}
BENCHMARK(BM_KeyPressToEventStream)->Iterations(500)->UseRealTime()->Unit(benchmark::kMicrosecond);

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
