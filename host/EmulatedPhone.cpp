// The emulated phone: the platform's event thread, display and services around one phonelet.
#include "EmulatedPhone.h"

#include <cstdint>
#include <thread>

#include "display/Image.h"
#include "phonelet/Phonelet.h"
#include "threads/ThreadActivity.h"

EmulatedPhone::EmulatedPhone(const PhoneOptions& options)
    : mDisplay(mLoop, options.model), mConfiguration(mLoop), mHttp(options.extraCaFile), mKeypad(mLoop),
      mCallControl(mLoop), mPhoneletManager(mLoop, this) {
    mContext.setDisplay(&mDisplay);
    mContext.setApplicationName(options.applicationName);
    mContext.setLocale(options.locale);
    mContext.setDateFormat(options.dateFormat);
    mContext.setTimeFormat(options.timeFormat);
    DisplayAPI::Image::setFolders(options.filesFolder, options.skinFolder);
    mHttp.setMaxDocumentSize(options.maxDocumentSize);
    registerServices();
    mCallControl.setCallObserver([this] { callsChanged(); });
    // Digits that no widget takes, while dialling is off, go to the keypad's subscribers.
    mDisplay.setKeypadObserver([this](int code) { mKeypad.pressKey(code); });
}

EmulatedPhone::~EmulatedPhone() {
    mCallControl.setCallObserver(nullptr);
    mDisplay.setKeypadObserver(nullptr);
    stop();
    mLoop.stop();
}

void EmulatedPhone::registerServices() {
    mContext.setService("LocalMgmtIfc", &mConfiguration);
    mContext.setService("DirectoryServiceIfc", &mDirectory);
    mContext.setService("PhoneletManagerIfc", &mPhoneletManager);
    mContext.setService("CSTAServiceIfc", &mCallControl);
    mContext.setService("PhysicalInterfaceServiceIfc", &mKeypad);
    mContext.setService("ClockServiceIfc", &mClock);
    mContext.setService("MediaControlServiceIfc", &mMedia);
    mContext.setService("HttpServiceIfc", &mHttp);
}

bool EmulatedPhone::loadPhonelet(const std::string& pluginPath, std::string& error) {
    if (!mPlugin.load(pluginPath, error)) {
        return false;
    }
    bool ok = false;
    mLoop.runAndWait([&] {
        mPhonelet = mPlugin.createPhonelet();
        if (mPhonelet == nullptr) {
            error = "the phonelet plug-in " + pluginPath + " created no phonelet";
            return;
        }
        mPhoneletManager.registerPhonelet(*mPhonelet, mContext.getApplicationName());
        mPhonelet->init(mContext);
        mRunning = true;
        ok = true;
    });
    return ok;
}

bool EmulatedPhone::isDateFormat(const std::string& format) {
    return format == "MM/DD/YYYY" || format == "YYYY-MM-DD" || format == "DD.MM.YYYY";
}

bool EmulatedPhone::isTimeFormat(const std::string& format) {
    return format == "12HR" || format == "24HR";
}

bool EmulatedPhone::setDateFormat(const std::string& format) {
    if (!isDateFormat(format)) {
        return false;
    }
    mLoop.runAndWait([this, format] {
        mContext.setDateFormat(format);
        if (mPhonelet != nullptr) {
            mPhonelet->dateFormatChanged(format);
        }
    });
    return true;
}

bool EmulatedPhone::setTimeFormat(const std::string& format) {
    if (!isTimeFormat(format)) {
        return false;
    }
    mLoop.runAndWait([this, format] {
        mContext.setTimeFormat(format);
        if (mPhonelet != nullptr) {
            mPhonelet->timeFormatChanged(format);
        }
    });
    return true;
}

void EmulatedPhone::start() {
    mLoop.runAndWait([this] {
        if (mPhonelet != nullptr) {
            mPhonelet->startPhonelet();
            mPhonelet->show();
            mPhoneletManager.setFrontPhonelet(mPhonelet->GetPhoneletName());
        }
    });
}

void EmulatedPhone::stop() {
    mLoop.runAndWait([this] { stopOnLoop(); });
}

// Transfers under way would hold the stop for their whole time-out; the phone is going, so
// they are cut short.
void EmulatedPhone::stopOnLoop() {
    if (mPhonelet == nullptr) {
        return;
    }
    Phonelet* phonelet = mPhonelet;
    mPhonelet = nullptr;
    mRunning = false;
    phonelet->hide();
    mHttp.abortAll();
    phonelet->stopPhonelet();
    delete phonelet;
}

int EmulatedPhone::push(const std::string& pushData, const std::string& appName, int pushType,
                        const std::string& via) {
    int result = -1;
    mLoop.runAndWait([&] {
        if (mPhonelet != nullptr) {
            result = mPhonelet->push(pushData, appName, pushType);
        }
    });
    PushObserver observer;
    {
        std::lock_guard<std::mutex> lock(mObserverMutex);
        observer = mPushObserver;
    }
    if (observer) {
        observer(via, pushData, appName, pushType, result);
    }
    return result;
}

void EmulatedPhone::setPushObserver(PushObserver observer) {
    std::lock_guard<std::mutex> lock(mObserverMutex);
    mPushObserver = std::move(observer);
}

nlohmann::json EmulatedPhone::describeState() const {
    nlohmann::json beeps = nlohmann::json::array();
    std::uint64_t beepsPlayed = 0;
    for (const auto& beep : mMedia.beeps()) {
        beeps.push_back(beep.beepNumber);
        beepsPlayed = beep.sequence;
    }
    nlohmann::json calls = describeCalls();
    const std::string application = mContext.getApplicationName();
    return {{"application", application},
            {"running", isRunning()},
            {"shown", mDisplay.isShown()},
            {"front", mPhoneletManager.frontPhonelet()},
            {"led", mPhoneletManager.isLedOn(application)},
            {"tabBarFocused", mPhoneletManager.isTabBarFocused()},
            {"dateFormat", mContext.getDateFormat()},
            {"timeFormat", mContext.getTimeFormat()},
            {"beeps", beeps},
            {"beepsPlayed", beepsPlayed},
            {"calls", calls}};
}

nlohmann::json EmulatedPhone::describeCalls() const {
    nlohmann::json calls = nlohmann::json::array();
    for (const auto& call : mCallControl.calls()) {
        const char* state = call.held ? "held" : call.answered ? "connected" : "ringing";
        calls.push_back({{"id", call.callId},
                         {"direction", call.incoming ? "incoming" : "outgoing"},
                         {"calling", call.callingDevice},
                         {"called", call.calledDevice},
                         {"answered", call.answered},
                         {"state", state}});
    }
    return calls;
}

// The phone's call screen comes in front of the application with every new call and leaves
// with the last one; an application that takes the focus back (answered call) stays in front.
void EmulatedPhone::callsChanged() {
    const std::size_t count = mCallControl.calls().size();
    const std::string application = mContext.getApplicationName();
    if (count > mCallsSeen) {
        mPhoneletManager.setPhoneScreenInFront(true);
        if (mPhonelet != nullptr && mDisplay.isShown()) {
            mPhonelet->hide();
        }
    } else if (count == 0 && mCallsSeen > 0) {
        mPhoneletManager.setPhoneScreenInFront(false);
        if (mPhonelet != nullptr && !mDisplay.isShown() && mPhoneletManager.frontPhonelet() == application) {
            mPhonelet->show();
        }
    }
    mCallsSeen = count;
}

bool EmulatedPhone::lifeCycle(const std::string& action) {
    bool done = false;
    mLoop.runAndWait([&] {
        if (mPhonelet == nullptr) {
            return;
        }
        done = true;
        if (action == "show") {
            mPhonelet->show();
        } else if (action == "hide") {
            mPhonelet->hide();
        } else if (action == "tab") {
            mPhonelet->tab();
        } else {
            done = false;
        }
    });
    return done;
}

bool EmulatedPhone::waitUntilIdle(std::chrono::milliseconds timeout, std::string& busy) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + timeout;
    Clock::time_point quietSince = Clock::now();
    std::uint64_t revision = mDisplay.revision();
    for (;;) {
        mDisplay.waitUntilSettled();
        const bool queuesIdle = ThreadActivity::allWaitingForWork();
        const bool noTransfers = mHttp.transfersUnderWay() == 0;
        const bool displayStill = mDisplay.revision() == revision;
        const Clock::time_point now = Clock::now();
        if (!queuesIdle || !noTransfers || !displayStill) {
            quietSince = now;
            revision = mDisplay.revision();
        } else if (now - quietSince >= kQuietTime) {
            return true;
        }
        if (now >= deadline) {
            busy = !queuesIdle    ? "a message queue is working"
                   : !noTransfers ? "a request is under way"
                                  : "the display keeps changing";
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

bool EmulatedPhone::isRunning() const {
    return mRunning;
}

void EmulatedPhone::bringToFront(Phonelet& phonelet, bool) {
    phonelet.show();
}

void EmulatedPhone::sendToBack(Phonelet& phonelet) {
    phonelet.hide();
}

void EmulatedPhone::tabBarFocusChanged(bool inTabBar) {
    if (mPhonelet != nullptr) {
        mPhonelet->tabStatusChange(inTabBar);
    }
}

void EmulatedPhone::stopPhonelet(Phonelet& phonelet) {
    if (&phonelet == mPhonelet) {
        stopOnLoop();
    }
}
