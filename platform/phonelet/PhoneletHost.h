// What the phonelet manager asks of the host that runs the phonelets.
#pragma once

#include <string>

class Phonelet;

// Called on the platform's event loop, with no platform lock held, so the host may call the
// phonelet's life-cycle operations (show, hide, tabStatusChange, stopPhonelet) from here.
class PhoneletHost {
public:
    virtual ~PhoneletHost() = default;

    // Bring `phonelet` to the front: hide the application in front, then show this one.
    // `forced` is set for GrabFocus, which also wins over the phone's own screens.
    virtual void bringToFront(Phonelet& phonelet, bool forced) = 0;
    // `phonelet` gave the front back: hide it and show what the phone shows otherwise.
    virtual void sendToBack(Phonelet& phonelet) = 0;
    // Stop `phonelet` (stopPhonelet) and release it; its shutdown deregisters it.
    virtual void stopPhonelet(Phonelet& phonelet) = 0;
    virtual void ledChanged(const std::string& /*name*/, bool /*on*/) {}
    // The phone's tab bar gained (true) or lost the focus; the host passes it on to the
    // phonelet in front with tabStatusChange.
    virtual void tabBarFocusChanged(bool /*inTabBar*/) {}
    virtual void localeNotified(Phonelet& /*phonelet*/, const std::string& /*language*/) {}
};
