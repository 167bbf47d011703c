// A list of 100 options that all name one cached picture, against the same list without pictures:
// from the key press to the whole list on the display, through the phone and a loopback server.
#include <benchmark/benchmark.h>
#include <httplib.h>
#include <stb_image_write.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "EmulatedPhone.h"

namespace {

constexpr int kOptions = 100;

std::string iconPng() {
    std::string rgb(24 * 24 * 3, '\0');
    for (std::size_t i = 0; i < rgb.size(); ++i) {
        rgb[i] = static_cast<char>((i * 29) & 0xFF);
    }
    std::string out;
    stbi_write_png_to_func(
        [](void* context, void* data, int size) {
            static_cast<std::string*>(context)->append(static_cast<const char*>(data),
                                                       static_cast<std::size_t>(size));
        },
        &out, 24, 24, 3, rgb.data(), 24 * 3);
    return out;
}

std::string listDocument(int number, int port, bool pictures) {
    const std::string base = "http://127.0.0.1:" + std::to_string(port);
    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><IppDisplay><IppScreen ID=\"1\"><IppList Count=\"" +
        std::to_string(kOptions) + "\"><Title>List " + std::to_string(number) + "</Title><Url>" + base +
        "/list</Url>";
    for (int i = 0; i < kOptions; ++i) {
        xml += "<Option Key=\"k\" Value=\"" + std::to_string(i) + "\" Selected=\"FALSE\"><OptionText>Entry " +
               std::to_string(i) + "</OptionText>" +
               (pictures ? "<Image Cache=\"bench-icon\">" + base + "/icon.png</Image>" : "") + "</Option>";
    }
    return xml + "</IppList></IppScreen></IppDisplay>";
}

// The title is the wanted one and every row is there, with its picture when pictures are wanted.
bool listShown(DisplayAPI::Display& display, const std::string& title, bool pictures) {
    const nlohmann::json screen = display.snapshot().value("screen", nlohmann::json());
    if (!screen.is_object() || screen.value("title", nlohmann::json()) != title) {
        return false;
    }
    const auto& rows = screen["rows"];
    if (rows.size() != static_cast<std::size_t>(kOptions)) {
        return false;
    }
    return !pictures || std::all_of(rows.begin(), rows.end(),
                                    [](const nlohmann::json& row) { return !row["image"].is_null(); });
}

void showLists(benchmark::State& state, bool pictures) {
    httplib::Server server;
    std::atomic<int> pages{0};
    std::atomic<int> downloads{0};
    const std::string icon = iconPng();
    server.set_tcp_nodelay(true);
    const int port = server.bind_to_any_port("127.0.0.1");
    server.Get("/icon.png", [&](const httplib::Request&, httplib::Response& response) {
        ++downloads;
        response.set_content(icon, "image/png");
    });
    server.Get(".*", [&](const httplib::Request&, httplib::Response& response) {
        response.set_content(listDocument(++pages, port, pictures), "text/xml");
    });
    std::thread listener([&] { server.listen_after_bind(); });
    while (!server.is_running()) {
        std::this_thread::yield();
    }
    PhoneOptions options;
    options.applicationName = "PictureBench-" + std::to_string(port);
    auto phone = std::make_unique<EmulatedPhone>(options);
    phone->configuration().setValues({{"app-name-1", options.applicationName},
                                      {"server-addr-1", "127.0.0.1"},
                                      {"server-port-1", std::to_string(port)},
                                      {"transport-1", "http"},
                                      {"program-name-1", "list"},
                                      {"num-tabs-1", "0"},
                                      {"ipaddress", "127.0.0.1"},
                                      {"ip-protocol-mode", "IPv4"}});
    std::mutex mutex;
    std::condition_variable changed;
    phone->display().setChangeListener([&] {
        std::lock_guard<std::mutex> lock(mutex);
        changed.notify_all();
    });
    auto waitFor = [&](const std::string& title) {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(20),
                                [&] { return listShown(phone->display(), title, pictures); });
    };
    std::string error;
    if (!phone->loadPhonelet(AGP_PLUGIN_PATH, error)) {
        state.SkipWithError(error.c_str());
    } else {
        phone->start();
        if (!waitFor("List 1")) {
            state.SkipWithError("the first list did not appear");
        }
        std::vector<double> micros;
        for (auto _ : state) {
            const std::string next = "List " + std::to_string(pages + 1);
            const auto start = std::chrono::steady_clock::now();
            phone->display().pressKey(DisplayAPI::Key::Ok);
            if (!waitFor(next)) {
                state.SkipWithError("the next list did not appear");
                break;
            }
            micros.push_back(
                std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
        }
        if (!micros.empty()) {
            std::sort(micros.begin(), micros.end());
            state.counters["median_us"] = micros[micros.size() / 2];
        }
        state.counters["picture_downloads"] = downloads.load();
    }
    phone->stop();
    phone.reset();
    server.stop();
    listener.join();
}

void BM_ListOf100Options(benchmark::State& state) {
    showLists(state, false);
}
BENCHMARK(BM_ListOf100Options)->Iterations(100)->UseRealTime()->Unit(benchmark::kMicrosecond);

// Every option names the same cached picture: one download in all, the rest from the cache.
void BM_ListOf100OptionsWithOneCachedPicture(benchmark::State& state) {
    showLists(state, true);
}
BENCHMARK(BM_ListOf100OptionsWithOneCachedPicture)
    ->Iterations(100)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace
