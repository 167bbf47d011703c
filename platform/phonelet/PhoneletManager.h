// The host's phonelet manager: registry of running phonelets, front and LED state.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>

#include "events/LoopTasks.h"
#include "phonelet/PhoneletManagerIfc.h"

class PhoneletHost;

// Records which phonelet is in front, which LEDs are on and whether the phone's tab bar has the
// focus, and calls the host back on the event loop. Focus policy: RequestFocus is declined while
// the host reports a phone screen (a call screen, say) in front; GrabFocus always wins.
class PhoneletManager : public PhoneletManagerIfc {
public:
    // `host` may be null: the state is then recorded without anybody acting on it.
    PhoneletManager(EventLoop& loop, PhoneletHost* host);
    ~PhoneletManager() override;

    // Names the phonelet, hands it this manager and records it. False for an empty name, a name
    // already registered, or a phonelet registered twice.
    bool registerPhonelet(Phonelet& phonelet, const std::string& name);
    Phonelet* findPhonelet(const std::string& name) const;
    // Name of the phonelet in front, "" when the phone's own screens are.
    std::string frontPhonelet() const;
    // The host moved the front itself (application key, idle screen): "" for the phone's screens.
    void setFrontPhonelet(const std::string& name);
    // A phone screen (call screen) sits in front of every phonelet until cleared.
    void setPhoneScreenInFront(bool inFront);
    bool isLedOn(const std::string& name) const;
    bool isTabBarFocused() const;

    void stopPhonelet(const std::string& name) override;
    void setLed(const std::string& name, bool on) override;
    void setTabBarFocus(bool inTabBar) override;
    void requestFocus(Phonelet* phonelet) override;
    void grabFocus(Phonelet* phonelet) override;
    void releaseFocus(Phonelet* phonelet) override;
    void localeNotified(Phonelet* phonelet, const std::string& language) override;
    void deregisterPhonelet(Phonelet* phonelet) override;

private:
    // Registrations carry a serial number, so a task posted for one phonelet never reaches
    // another one that later lives at the same address.
    struct Registration {
        std::string name;
        std::uint64_t serial = 0;
    };
    using PhoneletTask = std::function<void(Phonelet&, const std::string& name)>;

    // Runs `task` on the loop if `phonelet` is still registered by then; the mutex is not held.
    void postForPhonelet(Phonelet* phonelet, PhoneletTask task);
    bool takeFront(const std::string& name, bool forced);
    bool giveBackFront(const std::string& name);

    PhoneletHost* const mHost;
    mutable std::mutex mMutex;
    std::map<Phonelet*, Registration> mPhonelets;
    std::uint64_t mNextSerial = 1;
    std::string mFront;
    bool mPhoneScreenInFront = false;
    bool mTabBarFocused = false;
    std::set<std::string> mLedsOn;
    LoopTasks mTasks;
};
