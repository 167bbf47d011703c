// The host's phonelet manager.
#include "phonelet/PhoneletManager.h"

#include <utility>
#include <vector>

#include "logging/Log.h"
#include "phonelet/Phonelet.h"
#include "phonelet/PhoneletHost.h"

namespace {
const char* const kModule = "PhoneletManager";
const char* const kSource = "./platform/phonelet/PhoneletManager.cpp";
} // namespace

PhoneletManager::PhoneletManager(EventLoop& loop, PhoneletHost* host) : mHost(host), mTasks(loop) {}

PhoneletManager::~PhoneletManager() {
    mTasks.close();
    std::vector<Phonelet*> remaining;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const auto& entry : mPhonelets) {
            remaining.push_back(entry.first);
        }
        mPhonelets.clear();
    }
    for (Phonelet* phonelet : remaining) {
        phonelet->setPhoneletManager(nullptr);
    }
}

bool PhoneletManager::registerPhonelet(Phonelet& phonelet, const std::string& name) {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (name.empty() || mPhonelets.count(&phonelet) != 0) {
            return false;
        }
        for (const auto& entry : mPhonelets) {
            if (entry.second.name == name) {
                return false;
            }
        }
        mPhonelets[&phonelet] = Registration{name, mNextSerial++};
    }
    phonelet.setPhoneletName(name);
    phonelet.setPhoneletManager(this);
    return true;
}

Phonelet* PhoneletManager::findPhonelet(const std::string& name) const {
    std::lock_guard<std::mutex> lock(mMutex);
    for (const auto& entry : mPhonelets) {
        if (entry.second.name == name) {
            return entry.first;
        }
    }
    return nullptr;
}

std::string PhoneletManager::frontPhonelet() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mPhoneScreenInFront ? std::string() : mFront;
}

void PhoneletManager::setFrontPhonelet(const std::string& name) {
    std::lock_guard<std::mutex> lock(mMutex);
    mFront = name;
    mPhoneScreenInFront = false;
}

void PhoneletManager::setPhoneScreenInFront(bool inFront) {
    std::lock_guard<std::mutex> lock(mMutex);
    mPhoneScreenInFront = inFront;
}

bool PhoneletManager::isLedOn(const std::string& name) const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mLedsOn.count(name) != 0;
}

bool PhoneletManager::isTabBarFocused() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mTabBarFocused;
}

void PhoneletManager::stopPhonelet(const std::string& name) {
    mTasks.post([this, name] {
        Phonelet* phonelet = findPhonelet(name);
        if (phonelet == nullptr) {
            if (loggingOnAppUni(kModule, 2)) {
                logAppUni(kModule, kSource, 2, __LINE__, "stopPhonelet: no phonelet named [%s]",
                          name.c_str());
            }
            return;
        }
        if (mHost != nullptr) {
            mHost->stopPhonelet(*phonelet);
        }
    });
}

void PhoneletManager::setLed(const std::string& name, bool on) {
    if (name.empty()) {
        if (loggingOnAppUni(kModule, 2)) {
            logAppUni(kModule, kSource, 2, __LINE__, "setLed: no phonelet name given");
        }
        return;
    }
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (on) {
            mLedsOn.insert(name);
        } else {
            mLedsOn.erase(name);
        }
    }
    if (mHost != nullptr) {
        mTasks.post([this, name, on] { mHost->ledChanged(name, on); });
    }
}

void PhoneletManager::setTabBarFocus(bool inTabBar) {
    mTasks.post([this, inTabBar] {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            mTabBarFocused = inTabBar;
        }
        if (mHost != nullptr) {
            mHost->tabBarFocusChanged(inTabBar);
        }
    });
}

void PhoneletManager::requestFocus(Phonelet* phonelet) {
    postForPhonelet(phonelet, [this](Phonelet& target, const std::string& name) {
        if (takeFront(name, false) && mHost != nullptr) {
            mHost->bringToFront(target, false);
        }
    });
}

void PhoneletManager::grabFocus(Phonelet* phonelet) {
    postForPhonelet(phonelet, [this](Phonelet& target, const std::string& name) {
        if (takeFront(name, true) && mHost != nullptr) {
            mHost->bringToFront(target, true);
        }
    });
}

void PhoneletManager::releaseFocus(Phonelet* phonelet) {
    postForPhonelet(phonelet, [this](Phonelet& target, const std::string& name) {
        if (giveBackFront(name) && mHost != nullptr) {
            mHost->sendToBack(target);
        }
    });
}

void PhoneletManager::localeNotified(Phonelet* phonelet, const std::string& language) {
    postForPhonelet(phonelet, [this, language](Phonelet& target, const std::string&) {
        if (mHost != nullptr) {
            mHost->localeNotified(target, language);
        }
    });
}

void PhoneletManager::deregisterPhonelet(Phonelet* phonelet) {
    std::lock_guard<std::mutex> lock(mMutex);
    auto found = mPhonelets.find(phonelet);
    if (found == mPhonelets.end()) {
        return;
    }
    if (mFront == found->second.name) {
        mFront.clear();
    }
    mPhonelets.erase(found);
}

void PhoneletManager::postForPhonelet(Phonelet* phonelet, PhoneletTask task) {
    std::uint64_t serial = 0;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        auto found = mPhonelets.find(phonelet);
        if (found == mPhonelets.end()) {
            return;
        }
        serial = found->second.serial;
    }
    mTasks.post([this, phonelet, serial, task = std::move(task)] {
        std::string name;
        {
            std::lock_guard<std::mutex> lock(mMutex);
            auto found = mPhonelets.find(phonelet);
            if (found == mPhonelets.end() || found->second.serial != serial) {
                return;
            }
            name = found->second.name;
        }
        task(*phonelet, name);
    });
}

bool PhoneletManager::takeFront(const std::string& name, bool forced) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mFront == name && !mPhoneScreenInFront) {
        return false;
    }
    if (mPhoneScreenInFront && !forced) {
        if (loggingOnAppUni(kModule, 5)) {
            logAppUni(kModule, kSource, 5, __LINE__,
                      "Focus request of [%s] declined: a phone screen is in front", name.c_str());
        }
        return false;
    }
    mPhoneScreenInFront = false;
    mFront = name;
    return true;
}

bool PhoneletManager::giveBackFront(const std::string& name) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mFront != name) {
        return false;
    }
    mFront.clear();
    return true;
}
