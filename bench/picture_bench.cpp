// A list of 100 options that all name one cached picture, against the same list without pictures:
// from the key press to the whole list on the display, through the phone and a loopback server,
// the two taking turns in one run.
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

// Whether list `number` shows pictures: every other one, so that the two kinds take turns.
bool withPictures(int number) {
    return number % 2 == 0;
}

// A phone showing a new list on every OK, served by a loopback server; lists with and without
// pictures take turns.
class ListPhone {
public:
    ListPhone() : mIcon(iconPng()) {
        mServer.set_tcp_nodelay(true);
        mPort = mServer.bind_to_any_port("127.0.0.1");
        mServer.Get("/icon.png", [this](const httplib::Request&, httplib::Response& response) {
            ++mDownloads;
            response.set_content(mIcon, "image/png");
        });
        mServer.Get(".*", [this](const httplib::Request&, httplib::Response& response) {
            const int number = ++mPages;
            response.set_content(listDocument(number, mPort, withPictures(number)), "text/xml");
        });
        mListener = std::thread([this] { mServer.listen_after_bind(); });
        while (!mServer.is_running()) {
            std::this_thread::yield();
        }
        PhoneOptions options;
        options.applicationName = "PictureBench-" + std::to_string(mPort);
        mPhone = std::make_unique<EmulatedPhone>(options);
        mPhone->configuration().setValues({{"app-name-1", options.applicationName},
                                           {"server-addr-1", "127.0.0.1"},
                                           {"server-port-1", std::to_string(mPort)},
                                           {"transport-1", "http"},
                                           {"program-name-1", "list"},
                                           {"num-tabs-1", "0"},
                                           {"ipaddress", "127.0.0.1"},
                                           {"ip-protocol-mode", "IPv4"}});
        mPhone->display().setChangeListener([this] {
            std::lock_guard<std::mutex> lock(mMutex);
            mChanged.notify_all();
        });
    }
    ~ListPhone() {
        mPhone->stop();
        mPhone.reset();
        mServer.stop();
        mListener.join();
    }

    bool start(std::string& error) {
        if (!mPhone->loadPhonelet(AGP_PLUGIN_PATH, error)) {
            return false;
        }
        mPhone->start();
        error = "the first list did not appear";
        return waitFor("List 1");
    }
    // Microseconds from OK to the next list whole on the display; negative when it never came.
    // `pictures` tells which kind it was.
    double showNext(bool& pictures) {
        pictures = withPictures(mPages + 1);
        const std::string next = "List " + std::to_string(mPages + 1);
        const auto start = std::chrono::steady_clock::now();
        mPhone->display().pressKey(DisplayAPI::Key::Ok);
        if (!waitFor(next)) {
            return -1;
        }
        return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
    }
    int downloads() const { return mDownloads; }

private:
    // One look at the display per burst of changes, once its event loop has run what was
    // queued: a snapshot on every single change would time the watcher (each picture is a change
    // of its own) rather than the phone.
    bool waitFor(const std::string& title) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        for (;;) {
            const std::uint64_t seen = mPhone->display().revision();
            mPhone->display().waitUntilSettled();
            if (listShown(mPhone->display(), title, withPictures(std::stoi(title.substr(5))))) {
                return true;
            }
            std::unique_lock<std::mutex> lock(mMutex);
            if (!mChanged.wait_until(lock, deadline, [&] { return mPhone->display().revision() != seen; })) {
                return false;
            }
        }
    }

    std::string mIcon;
    httplib::Server mServer;
    int mPort = 0;
    std::thread mListener;
    std::atomic<int> mPages{0};
    std::atomic<int> mDownloads{0};
    std::unique_ptr<EmulatedPhone> mPhone;
    std::mutex mMutex;
    std::condition_variable mChanged;
};

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

// The two kinds of list take turns on one phone, so that the machine's moods fall on both alike;
// an iteration is one list of each kind.
void BM_ListOf100OptionsWithOneCachedPictureAgainstNone(benchmark::State& state) {
    ListPhone phone;
    std::string error;
    if (!phone.start(error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    std::vector<double> micros[2];
    for (auto _ : state) {
        for (int turn = 0; turn < 2; ++turn) {
            bool pictures = false;
            const double shown = phone.showNext(pictures);
            if (shown < 0) {
                state.SkipWithError("a list did not appear");
                return;
            }
            micros[pictures ? 1 : 0].push_back(shown);
        }
    }
    state.counters["plain_median_us"] = median(micros[0]);
    state.counters["pictures_median_us"] = median(micros[1]);
    state.counters["ratio"] = median(micros[1]) / std::max(1.0, median(micros[0]));
    state.counters["picture_downloads"] = phone.downloads();
}
BENCHMARK(BM_ListOf100OptionsWithOneCachedPictureAgainstNone)
    ->Iterations(150)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace
