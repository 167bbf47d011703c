// Receiver of the phone's key, hook switch, jack and other hardware events.
#pragma once

#include <string>

#include "physical/PhysDefs.h"

// Subscribed through PhysicalInterfaceServiceIfc; every event arrives on the platform's event
// loop. Only button events are required; the others default to doing nothing.
class physicalEventObserver {
public:
    virtual ~physicalEventObserver() = default;

    // `key` 1..9 for the digits, 10 "*", 11 "#", 0 "0"; `text` is the key's text.
    virtual void buttonPressedEvent(PhysDefs::keyFunctionType type, int key, PhysDefs::actionType action,
                                    std::string text) = 0;
    virtual void hookswitchEvent(PhysDefs::actionType /*action*/) {}
    virtual void jackEvent(PhysDefs::plugIdentifier /*plug*/, PhysDefs::plugStatus /*status*/) {}
    // The object that subscribed, for services that subscribe on behalf of another one.
    virtual physicalEventObserver* getSubscribingService() { return this; }
    virtual void hotplugEvent(PhysDefs::plugIdentifier /*device*/, PhysDefs::plugStatus /*status*/) {}
    virtual void lampEvent(int /*lamp*/, int /*mode*/) {}
    virtual void sliderEvent(int /*slider*/, int /*position*/) {}
    virtual void clickwheelEvent(int /*steps*/) {}
    virtual void physicalInactivityTimerExpired() {}
    virtual void fpkAvailableEvent(bool /*available*/) {}
    virtual void shiftChangeEvent(bool /*shifted*/) {}
    virtual void activityDetected() {}
    // Name of the channel the observer's events go to; "" for direct delivery.
    virtual std::string getDestinationChannelName() { return ""; }
};
