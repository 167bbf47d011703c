// The plug-in base class of phone applications ("phonelets") and their life cycle.
#pragma once

#include <atomic>
#include <mutex>
#include <string>

class Context;
class PhoneletManagerIfc;

// The host loads a phonelet library, calls its createPhonelet entry, registers the result with
// its phonelet manager (PhoneletManager::registerPhonelet names the phonelet and hands it the
// manager), and then drives it: init, startPhonelet, show, hide, tab, ..., stopPhonelet, delete.
// Every life-cycle call arrives on the platform's event loop thread.
//
// The base's own virtual operations do nothing, except that shutdown deregisters from the
// manager and push refuses (0). The focus operations only ask: the manager answers later on the
// event loop, never on the calling thread, because callers may hold a lock that show and hide
// need, and a stop joins the caller's thread.
class Phonelet {
public:
    Phonelet() = default;
    // Deregisters from the phonelet manager if the phonelet has not done so itself.
    virtual ~Phonelet();
    Phonelet(const Phonelet&) = delete;
    Phonelet& operator=(const Phonelet&) = delete;

    virtual void init(Context& context);
    virtual void shutdown();
    virtual void timerEvent(int timerId);
    virtual std::string getInterfaces();
    virtual void startPhonelet();
    virtual void stopPhonelet();
    virtual void hide();
    virtual void show();
    virtual void tab();
    virtual void pause();
    virtual void resume();
    virtual void localeChanged(std::string language);
    virtual void dateFormatChanged(std::string format);
    virtual void timeFormatChanged(std::string format);
    // `active` true: the focus moved from the application up into the phone's own tab bar.
    virtual void tabStatusChange(bool active);
    // Server push; returns 1 when accepted, 0 when refused.
    virtual int push(const std::string& pushData, const std::string& appName, int pushType);

    // Ask to be brought to the front; the host may decline while a phone screen holds it.
    void RequestFocus();
    // Take the front even over the phone's own screens (a call screen, for example).
    void GrabFocus();
    // Give the front back when this phonelet holds it.
    void ReleaseFocus();
    // The name under which the host registered this phonelet ("" before registration).
    std::string GetPhoneletName() const;

    // Tells the platform that the phonelet now works in `language` (for example its configured
    // language differs from the phone's locale). Recorded here and passed on to the manager.
    void notifyLocaleChange(const std::string& language);
    std::string getNotifiedLocale() const;

    // The host's phonelet manager, null before registration and after deregistration.
    PhoneletManagerIfc* getPhoneletManager() const { return mPhoneletManager.load(); }
    // Deregisters this phonelet (its identity is its address) from the manager and forgets the
    // manager. Does nothing without one; safe to call twice.
    void deregisterFromPhoneletManager();

    // Host side: set by PhoneletManager::registerPhonelet.
    void setPhoneletName(const std::string& name);
    void setPhoneletManager(PhoneletManagerIfc* manager) { mPhoneletManager.store(manager); }

private:
    mutable std::mutex mMutex;
    std::string mName;
    std::string mNotifiedLocale;
    std::atomic<PhoneletManagerIfc*> mPhoneletManager{nullptr};
};
