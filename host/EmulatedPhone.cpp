// The emulated phone: the platform's event thread, display and services around one phonelet.
#include "EmulatedPhone.h"

#include "phonelet/Phonelet.h"

EmulatedPhone::EmulatedPhone(const PhoneOptions& options)
    : mDisplay(mLoop, options.model), mConfiguration(mLoop), mHttp(options.extraCaFile), mKeypad(mLoop),
      mCallControl(mLoop), mPhoneletManager(mLoop, this) {
    mContext.setDisplay(&mDisplay);
    mContext.setApplicationName(options.applicationName);
    mContext.setLocale(options.locale);
    mContext.setDateFormat(options.dateFormat);
    mContext.setTimeFormat(options.timeFormat);
    registerServices();
}

EmulatedPhone::~EmulatedPhone() {
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
    for (const auto& beep : mMedia.beeps()) {
        beeps.push_back(beep.beepNumber);
    }
    nlohmann::json calls = nlohmann::json::array();
    for (const auto& call : mCallControl.calls()) {
        calls.push_back({{"id", call.callId}, {"called", call.calledDevice}, {"answered", call.answered}});
    }
    const std::string application = mContext.getApplicationName();
    return {{"application", application},
            {"running", isRunning()},
            {"shown", mDisplay.isShown()},
            {"front", mPhoneletManager.frontPhonelet()},
            {"led", mPhoneletManager.isLedOn(application)},
            {"tabBarFocused", mPhoneletManager.isTabBarFocused()},
            {"beeps", beeps},
            {"calls", calls}};
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
