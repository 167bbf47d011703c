// The emulated phone: the platform's event thread, display and services around one phonelet.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

#include "PluginLoader.h"
#include "clock/ClockService.h"
#include "config/ConfigurationStore.h"
#include "csta/EmulatedCallControl.h"
#include "directory/DirectoryService.h"
#include "display/Display.h"
#include "events/EventLoop.h"
#include "http/CurlHttpService.h"
#include "media/MediaControlService.h"
#include "phonelet/Context.h"
#include "phonelet/PhoneletHost.h"
#include "phonelet/PhoneletManager.h"
#include "physical/PhysicalInterfaceService.h"

struct PhoneOptions {
    DisplayAPI::DisplayModel model;
    std::string applicationName;
    std::string locale = "en";
    std::string dateFormat = "DD.MM.YYYY";
    std::string timeFormat = "24HR";
    std::string extraCaFile;
    // The phone's own pictures: "file:" paths are read inside filesFolder, skin pictures from
    // skinFolder; empty leaves those pictures out.
    std::string filesFolder;
    std::string skinFolder;
    std::string phonebookFile; // CSV, see DirectoryService::loadFile; "" for an empty phone book
    std::uint64_t maxDocumentSize = HttpServiceIfc::kDefaultMaxDocumentSize;
};

// Every life-cycle call reaches the phonelet on the event thread, as on the phone. The phone
// stops and deletes its phonelet itself when the phonelet asks to stop (exit command).
class EmulatedPhone : public PhoneletHost {
public:
    explicit EmulatedPhone(const PhoneOptions& options);
    // Stops the phonelet if it still runs, then the event thread.
    ~EmulatedPhone() override;
    EmulatedPhone(const EmulatedPhone&) = delete;
    EmulatedPhone& operator=(const EmulatedPhone&) = delete;

    // Loads the plug-in, creates the phonelet, registers it and calls init. False with a reason.
    bool loadPhonelet(const std::string& pluginPath, std::string& error);
    // startPhonelet, then show.
    void start();
    // hide, stopPhonelet and delete; idempotent.
    void stop();
    // The host's push entry; 0 refused, 1 accepted, -1 without a phonelet. `via` names the way
    // the push came in, for the push observer.
    int push(const std::string& pushData, const std::string& appName, int pushType,
             const std::string& via = "host");
    // Told of every push and its result, on the pushing thread.
    using PushObserver = std::function<void(const std::string& via, const std::string& pushData,
                                            const std::string& appName, int pushType, int result)>;
    void setPushObserver(PushObserver observer);
    // The host's show, hide or tab of the application; false for another word or no phonelet.
    bool lifeCycle(const std::string& action);
    bool isRunning() const;
    // The phone's date format ("MM/DD/YYYY", "YYYY-MM-DD", "DD.MM.YYYY") or time format ("12HR",
    // "24HR") changed by the user: stored in the context and told to the running phonelet, on the
    // event thread. False, changing nothing, for any other text.
    bool setDateFormat(const std::string& format);
    static bool isDateFormat(const std::string& format);
    static bool isTimeFormat(const std::string& format);
    bool setTimeFormat(const std::string& format);
    std::string dateFormat() const { return mContext.getDateFormat(); }
    std::string timeFormat() const { return mContext.getTimeFormat(); }
    // How long the display must hold still before the phone counts as settled.
    static constexpr std::chrono::milliseconds kQuietTime{250};
    // Waits (at most `timeout`) until the phone is settled: every message queue's thread waits
    // for work with none queued, no HTTP request is under way, the event loop has run everything
    // queued, and the display has not changed for kQuietTime. False when the time ran out, with
    // what was still busy in `busy`. Timers (an alert's delay, an automatic reload) do not count.
    bool waitUntilIdle(std::chrono::milliseconds timeout, std::string& busy);
    // What the control API and the web page show besides the display: running, shown, front
    // phonelet, the application's LED, tab bar focus, beeps and calls.
    nlohmann::json describeState() const;
    // The calls of the phone: id, direction, calling and called number, answered, state
    // ("ringing", "connected" or "held").
    nlohmann::json describeCalls() const;

    // Takes a service away from the context, as on a phone where it is missing.
    void removeService(const std::string& name) { mContext.setService(name, nullptr); }

    EventLoop& loop() { return mLoop; }
    DisplayAPI::Display& display() { return mDisplay; }
    ConfigurationStore& configuration() { return mConfiguration; }
    CurlHttpService& http() { return mHttp; }
    PhoneletManager& phoneletManager() { return mPhoneletManager; }
    PhysicalInterfaceService& keypad() { return mKeypad; }
    EmulatedCallControl& callControl() { return mCallControl; }
    MediaControlService& media() { return mMedia; }
    DirectoryService& directory() { return mDirectory; }
    Context& context() { return mContext; }

    void bringToFront(Phonelet& phonelet, bool forced) override;
    void sendToBack(Phonelet& phonelet) override;
    void stopPhonelet(Phonelet& phonelet) override;
    // The phone's own tab bar took the focus from the application (true) or gave it back.
    void tabBarFocusChanged(bool inTabBar) override;

private:
    void registerServices();
    // On the event thread: the call screen follows the calls.
    void callsChanged();
    void stopOnLoop();

    EventLoop mLoop;
    DisplayAPI::Display mDisplay;
    ConfigurationStore mConfiguration;
    CurlHttpService mHttp;
    ClockService mClock;
    MediaControlService mMedia;
    DirectoryService mDirectory;
    PhysicalInterfaceService mKeypad;
    EmulatedCallControl mCallControl;
    PhoneletManager mPhoneletManager;
    Context mContext;
    PluginLoader mPlugin;
    Phonelet* mPhonelet = nullptr; // used on the event thread only
    std::size_t mCallsSeen = 0;    // used on the event thread only
    std::atomic<bool> mRunning{false};
    mutable std::mutex mObserverMutex;
    PushObserver mPushObserver;
};
