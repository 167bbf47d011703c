// The platform service through which phonelets ask the host for focus, LEDs and their own stop.
#pragma once

#include <string>

#include "services/PlatformService.h"

class Phonelet;

// Looked up by phonelets under SERVICE_NAME. Every operation returns at once: what it asks of
// the host (showing, hiding or stopping a phonelet) happens later on the platform's event loop,
// never on the calling thread. Callers are queue threads that may hold the phonelet's own locks,
// and stopping a phonelet joins those very threads.
//
// A phonelet is identified by its address (the Phonelet base) or by the name the host
// registered it under; the two are interchangeable for registered phonelets.
class PhoneletManagerIfc : public PlatformService {
public:
    static constexpr const char* SERVICE_NAME = "PhoneletManagerIfc";

    // Asks the host to stop the named phonelet through its life cycle (stopPhonelet, then
    // delete). Unknown names are logged and ignored.
    virtual void stopPhonelet(const std::string& name) = 0;
    // Switches the LED of the named phonelet's application key.
    virtual void setLed(const std::string& name, bool on) = 0;
    // Called with true when the focus leaves the application upwards into the phone's own tab
    // bar, with false when it comes back; the host answers with tabStatusChange on the phonelet.
    virtual void setTabBarFocus(bool inTabBar) = 0;
    // The three focus requests of the Phonelet base (RequestFocus, GrabFocus, ReleaseFocus).
    virtual void requestFocus(Phonelet* phonelet) = 0;
    virtual void grabFocus(Phonelet* phonelet) = 0;
    virtual void releaseFocus(Phonelet* phonelet) = 0;
    // The phonelet works in another language than the phone's locale (Phonelet::notifyLocaleChange).
    virtual void localeNotified(Phonelet* phonelet, const std::string& language) = 0;
    // Forgets the phonelet at once: once this returns the manager never touches it again, so a
    // phonelet may deregister from its shutdown or destructor.
    virtual void deregisterPhonelet(Phonelet* phonelet) = 0;
};
