// Tests of the plug-in framework: context, phonelet manager, and the focus and stop requests
// being answered later on the event loop rather than on the caller's thread.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "config/ConfigurationStore.h"
#include "csta/CSTAServiceIfc.h"
#include "events/EventLoop.h"
#include "phonelet/Context.h"
#include "phonelet/Phonelet.h"
#include "phonelet/PhoneletHost.h"
#include "phonelet/PhoneletManager.h"
#include "threads/Semaphore.h"

namespace {

// Shows and hides take the phonelet's own non re-entrant lock, as a GUI lock would.
class LockingPhonelet : public Phonelet {
public:
    void show() override { touchGuiLock("show"); }
    void hide() override { touchGuiLock("hide"); }
    void stopPhonelet() override {
        calls.push_back("stop");
        if (worker.joinable()) {
            worker.join();
        }
        shutdown();
    }

    Semaphore guiLock{1, 1, false};
    std::thread worker;
    std::vector<std::string> calls;
    bool lockTakenEveryTime = true;

private:
    void touchGuiLock(const char* what) {
        // A bounded wait, so that a synchronous call back fails the test instead of hanging it.
        const bool taken = guiLock.take(5000);
        lockTakenEveryTime = lockTakenEveryTime && taken;
        calls.push_back(what);
        if (taken) {
            guiLock.give();
        }
    }
};

class RecordingHost : public PhoneletHost {
public:
    explicit RecordingHost(EventLoop& loop) : mLoop(loop) {}
    void bringToFront(Phonelet& phonelet, bool forced) override {
        record(std::string(forced ? "grab " : "front ") + phonelet.GetPhoneletName());
        phonelet.show();
    }
    void sendToBack(Phonelet& phonelet) override {
        record("back " + phonelet.GetPhoneletName());
        phonelet.hide();
    }
    void stopPhonelet(Phonelet& phonelet) override {
        record("stop " + phonelet.GetPhoneletName());
        phonelet.stopPhonelet();
    }
    void ledChanged(const std::string& name, bool on) override {
        record("led " + name + (on ? " on" : " off"));
    }
    void tabBarFocusChanged(bool inTabBar) override { record(inTabBar ? "tab bar" : "application"); }
    void localeNotified(Phonelet& phonelet, const std::string& language) override {
        record("locale " + phonelet.GetPhoneletName() + " " + language);
    }

    std::vector<std::string> events;
    bool allOnLoopThread = true;

private:
    void record(const std::string& event) {
        allOnLoopThread = allOnLoopThread && mLoop.isLoopThread();
        events.push_back(event);
    }
    EventLoop& mLoop;
};

} // namespace

TEST(Context, HandsOutServicesByNameForATypeCheck) {
    EventLoop loop;
    ConfigurationStore store(loop);
    Context context;
    context.setService(LocalMgmtIfc::SERVICE_NAME, &store);
    context.setApplicationName("Weather");
    PlatformService* service = context.getService("LocalMgmtIfc");
    EXPECT_EQ(dynamic_cast<LocalMgmtIfc*>(service), &store);
    EXPECT_EQ(dynamic_cast<CSTAServiceIfc*>(service), nullptr);
    EXPECT_EQ(context.getService("HttpServiceIfc"), nullptr);
    context.setService("LocalMgmtIfc", nullptr);
    EXPECT_EQ(context.getService("LocalMgmtIfc"), nullptr);
    EXPECT_EQ(context.getDisplay(), nullptr);
    EXPECT_EQ(context.getApplicationName(), "Weather");
    EXPECT_EQ(context.getDateFormat(), "DD.MM.YYYY");
    EXPECT_EQ(context.getTimeFormat(), "24HR");
}

TEST(PhoneletManager, FocusRequestsFromALockHolderAreAnsweredLaterOnTheLoop) {
    EventLoop loop;
    RecordingHost host(loop);
    PhoneletManager manager(loop, &host);
    LockingPhonelet phonelet;
    ASSERT_TRUE(manager.registerPhonelet(phonelet, "Weather"));
    EXPECT_EQ(phonelet.GetPhoneletName(), "Weather");
    EXPECT_EQ(phonelet.getPhoneletManager(), &manager);

    // A queue thread raises an alert: it holds the GUI lock while it asks for the front.
    std::thread queueThread([&] {
        phonelet.guiLock.take(-1);
        phonelet.RequestFocus();
        phonelet.calls.push_back("request returned");
        phonelet.guiLock.give();
    });
    queueThread.join();
    loop.drain();
    EXPECT_TRUE(phonelet.lockTakenEveryTime);
    EXPECT_EQ(phonelet.calls, (std::vector<std::string>{"request returned", "show"}));
    EXPECT_EQ(manager.frontPhonelet(), "Weather");

    // A call screen holds the front: asking is declined, grabbing wins.
    manager.setPhoneScreenInFront(true);
    EXPECT_EQ(manager.frontPhonelet(), "");
    phonelet.RequestFocus();
    phonelet.GrabFocus();
    phonelet.RequestFocus();
    loop.drain();
    phonelet.ReleaseFocus();
    phonelet.ReleaseFocus();
    manager.setTabBarFocus(true);
    phonelet.notifyLocaleChange("de");
    loop.drain();
    EXPECT_EQ(manager.frontPhonelet(), "");
    EXPECT_TRUE(manager.isTabBarFocused());
    EXPECT_EQ(phonelet.getNotifiedLocale(), "de");
    EXPECT_EQ(host.events, (std::vector<std::string>{"front Weather", "grab Weather", "back Weather",
                                                     "tab bar", "locale Weather de"}));
    EXPECT_TRUE(host.allOnLoopThread);
}

TEST(PhoneletManager, StopByNameJoinsTheAskingThreadFromTheLoop) {
    EventLoop loop;
    RecordingHost host(loop);
    PhoneletManager manager(loop, &host);
    LockingPhonelet phonelet;
    ASSERT_TRUE(manager.registerPhonelet(phonelet, "Weather"));

    // The exit request comes from a queue thread that the stop itself joins.
    std::promise<void> go;
    std::promise<void> asked;
    phonelet.worker = std::thread([&] {
        go.get_future().wait();
        phonelet.getPhoneletManager()->stopPhonelet(phonelet.GetPhoneletName());
        phonelet.getPhoneletManager()->stopPhonelet("Weather");
        asked.set_value();
    });
    go.set_value();
    asked.get_future().wait();
    loop.drain();
    EXPECT_EQ(host.events, (std::vector<std::string>{"stop Weather"})) << "once stopped it is gone";
    EXPECT_EQ(phonelet.getPhoneletManager(), nullptr) << "shutdown deregistered it";
    EXPECT_EQ(manager.findPhonelet("Weather"), nullptr);
    manager.stopPhonelet("Unknown");
    loop.drain();
    EXPECT_EQ(host.events.size(), 1u);
}

TEST(PhoneletManager, RecordsLedsAndForgetsDeregisteredPhonelets) {
    EventLoop loop;
    RecordingHost host(loop);
    PhoneletManager manager(loop, &host);
    auto phonelet = std::make_unique<LockingPhonelet>();
    LockingPhonelet other;
    ASSERT_TRUE(manager.registerPhonelet(*phonelet, "Weather"));
    EXPECT_FALSE(manager.registerPhonelet(other, "Weather")) << "names are unique";
    EXPECT_FALSE(manager.registerPhonelet(*phonelet, "Other")) << "registered once";
    EXPECT_FALSE(manager.registerPhonelet(other, ""));

    manager.setLed("Weather", true);
    EXPECT_TRUE(manager.isLedOn("Weather")) << "the state is recorded at once";
    manager.setLed("", true);
    manager.setLed("Weather", false);
    EXPECT_FALSE(manager.isLedOn("Weather"));

    // A request still queued when the phonelet goes away is dropped, not delivered to it.
    std::promise<void> release;
    loop.post([&] { release.get_future().wait(); });
    phonelet->RequestFocus();
    phonelet.reset();
    release.set_value();
    loop.drain();
    EXPECT_EQ(host.events, (std::vector<std::string>{"led Weather on", "led Weather off"}));
    EXPECT_EQ(manager.findPhonelet("Weather"), nullptr);

    // A phonelet outliving its manager is told the manager is gone.
    {
        PhoneletManager shortLived(loop, nullptr);
        ASSERT_TRUE(shortLived.registerPhonelet(other, "Other"));
    }
    EXPECT_EQ(other.getPhoneletManager(), nullptr);
    other.RequestFocus();
}
