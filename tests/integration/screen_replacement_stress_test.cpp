// Several threads at once against the loaded phonelet: keys and life-cycle calls while pushes and
// queue threads replace, cache, trim and delete screens. Meant to be run under the sanitizers.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "ApplicationServer.h"
#include "EmulatedPhone.h"
#include "PhoneScreens.h"

namespace {

using DisplayAPI::Key;
using nlohmann::json;

// How long the threads work against each other; bounded so that a sanitizer run stays short.
constexpr auto kStressTime = std::chrono::seconds(3);

std::string list(const std::string& title, const std::string& url) {
    return "<IppList Count=\"3\"><Title>" + title + "</Title><Url>" + url +
           "</Url><Option Key=\"pick\" Value=\"a\" Selected=\"FALSE\"><OptionText>A</OptionText></Option>"
           "<Option Key=\"pick\" Value=\"b\" Selected=\"FALSE\"><OptionText>B</OptionText></Option>"
           "<Option Key=\"pick\" Value=\"c\" "
           "Selected=\"FALSE\"><OptionText>C</OptionText></Option></IppList>";
}

// Three screens in one document: a list that goes to screen 2 by its identifier, a form with Back
// and a list, so that keys choose screens by ID, go back, send requests and fill the cache.
std::string threeScreens(const std::string& title, const std::string& url) {
    return "<IppDisplay><IppScreen ID=\"1\" CommandCount=\"1\">" + list(title, url) +
           "<IppCommand Type=\"SCREEN\" Priority=\"0\"><Label>Two</Label><ScreenID>2</ScreenID>"
           "</IppCommand></IppScreen>"
           "<IppScreen ID=\"2\" CommandCount=\"2\"><IppForm><Title>" +
           title +
           " form</Title><IppTextField Key=\"t\" Default=\"EMPTY\" Constraint=\"ANY\" MaxSize=\"8\">"
           "<Label>T</Label></IppTextField></IppForm>"
           "<IppCommand Type=\"BACK\" Priority=\"0\"><Label>Back</Label></IppCommand>"
           "<IppCommand Type=\"SCREEN\" Priority=\"1\"><Label>Three</Label><ScreenID>3</ScreenID>"
           "</IppCommand></IppScreen>"
           "<IppScreen ID=\"3\">" +
           list(title + " 3", url) + "</IppScreen></IppDisplay>";
}

class ScreenReplacementStress : public ::testing::Test {
protected:
    void start(std::vector<std::pair<std::string, std::string>> extra) {
        PhoneOptions options;
        options.applicationName = uniqueApplicationName("Stress-");
        mPhone = std::make_unique<EmulatedPhone>(options);
        const std::string base = "http://127.0.0.1:" + std::to_string(mServer.port());
        mServer.setDocument("/app/start", threeScreens("Start", base + "/app/chosen"));
        mServer.setDocument("/app/chosen", threeScreens("Chosen", base + "/app/chosen"));
        mServer.setDocument("/app/pushed", threeScreens("Pushed", base + "/app/chosen"));
        auto values = loopbackApplication(options.applicationName, std::to_string(mServer.port()));
        values.insert(values.end(), extra.begin(), extra.end());
        ASSERT_TRUE(mPhone->configuration().setValues(values));
        std::string error;
        ASSERT_TRUE(mPhone->loadPhonelet(AGP_PLUGIN_PATH, error)) << error;
        mPhone->start();
        ASSERT_TRUE(mServer.waitForRequests(1));
    }

    // Runs `work(round)` on its own thread until the stress time is over.
    void alongside(const std::function<void(int)>& work) {
        mWorkers.emplace_back([this, work] {
            for (int round = 0; !mStop; ++round) {
                work(round);
            }
        });
    }

    void runFor(std::chrono::milliseconds duration) {
        std::this_thread::sleep_for(duration);
        mStop = true;
        for (auto& worker : mWorkers) {
            worker.join();
        }
        mWorkers.clear();
    }

    // Random keys from the ones that choose, confirm, go back, move and open menus.
    std::function<void(int)> randomKeys(unsigned seed) {
        auto random = std::make_shared<std::mt19937>(seed);
        return [this, random](int) {
            static const Key keys[] = {Key::Ok,       Key::Ok,       Key::Down,     Key::Up,   Key::Back,
                                       Key::SoftKey1, Key::SoftKey2, Key::SoftKey3, Key::Hash, Key::Right};
            mPhone->display().pressKey(keys[(*random)() % (sizeof(keys) / sizeof(keys[0]))]);
        };
    }

    std::function<void(int)> pushes(const std::string& appName) {
        return [this, appName](int round) {
            const int type = round % 2 == 0 ? 4 : 3; // active, forced
            EXPECT_EQ(mPhone->push("ServerAddr=127.0.0.1&ProgramName=app/pushed", appName, type), 1);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        };
    }

    int requestsTo(const std::string& path) {
        int count = 0;
        for (const std::string& request : mServer.requests()) {
            count += request.rfind(path, 0) == 0 ? 1 : 0;
        }
        return count;
    }

    // After the storm the phonelet must still answer: a last push comes on screen.
    void expectStillServing(const std::string& appName) {
        const std::string url = "http://127.0.0.1:" + std::to_string(mServer.port()) + "/app/after";
        mServer.setDocument("/app/after", "");
        mServer.setDocument("/app/last", "<IppDisplay><IppScreen ID=\"9\">" + list("Last one", url) +
                                             "</IppScreen></IppDisplay>");
        ASSERT_TRUE(mPhone->isRunning());
        // A full push queue drops a push, so the storm's pushes must drain first: wait until the
        // server has seen no new request for a second (30 s at most).
        size_t seen = 0;
        for (int quiet = 0, i = 0; quiet < 5 && i < 150; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            const size_t now = mServer.requests().size();
            quiet = now == seen ? quiet + 1 : 0;
            seen = now;
        }
        EXPECT_EQ(mPhone->push("ServerAddr=127.0.0.1&ProgramName=app/last", appName, 3), 1);
        // Pushes still queued from the storm come first; give them time on a loaded machine.
        json shot;
        for (int i = 0; i < 6 && shot.dump().find("Last one") == std::string::npos; ++i) {
            shot = waitForScreen(
                *mPhone, [](const json& s) { return s.dump().find("Last one") != std::string::npos; });
        }
        EXPECT_NE(shot.dump().find("Last one"), std::string::npos) << shot.dump();
    }

    ApplicationServer mServer;
    std::unique_ptr<EmulatedPhone> mPhone;
    std::atomic<bool> mStop{false};
    std::vector<std::thread> mWorkers;
};

TEST_F(ScreenReplacementStress, KeysWhileActivePushesReplaceTheScreen) {
    start({});
    const std::string appName = uniqueApplicationName("Stress-");
    alongside(pushes(appName));
    alongside(randomKeys(13));
    // OK alone as well: the command of a screen that a push is replacing at that moment.
    alongside([this](int) { mPhone->display().pressKey(Key::Ok); });
    runFor(kStressTime);

    EXPECT_GT(requestsTo("/app/pushed"), 0);
    expectStillServing(appName);
    // And keys still reach it: OK on the last screen sends its first option.
    mPhone->display().pressKey(Key::Ok);
    for (int i = 0; i < 500 && requestsTo("/app/after") == 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(requestsTo("/app/after?pick=a"), 1);
}

TEST_F(ScreenReplacementStress, ThreeTabsInstallWhileTheHostTogglesShowHideTabAndTabBar) {
    start({{"num-tabs-1", "3"},
           {"app-all-tabs-start-1", "true"},
           {"tab1-app-name-1", "one"},
           {"tab2-app-name-1", "two"},
           {"tab3-app-name-1", "three"}});
    ASSERT_TRUE(mServer.waitForRequests(3));
    for (const char* tab : {"one", "two", "three"}) {
        alongside(pushes(tab));
    }
    alongside(randomKeys(7));
    alongside([this](int round) {
        static const char* const actions[] = {"tab", "hide", "show", "tab"};
        mPhone->lifeCycle(actions[round % 4]);
        mPhone->loop().runAndWait([this, round] { mPhone->tabBarFocusChanged(round % 3 == 0); });
    });
    runFor(kStressTime);

    EXPECT_GT(requestsTo("/app/pushed"), 2);
    mPhone->lifeCycle("show");
    expectStillServing("two");
}

} // namespace
