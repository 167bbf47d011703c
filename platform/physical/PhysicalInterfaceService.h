// The emulated phone's keypad: key presses from the host go to subscribed observers.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "events/LoopTasks.h"
#include "physical/PhysicalInterfaceServiceIfc.h"

class PhysicalInterfaceService : public PhysicalInterfaceServiceIfc {
public:
    explicit PhysicalInterfaceService(EventLoop& loop);
    ~PhysicalInterfaceService() override;

    bool subscribe(physicalEventObserver* observer,
                   const std::vector<PhysDefs::SubscriptionGrp>& groups) override;
    bool unsubscribe(physicalEventObserver* observer) override;

    // Host side: one press of a dialpad key, 0..9 for the digits, 10 "*", 11 "#". Each observer
    // subscribed for keypad button events receives it once (KeyPressed), or as KeyPressed and
    // KeyReleased when it asked for every transition. False for any other code.
    bool pressKey(int key);
    // "0".."9", "*", "#"; "" for codes that are not dialpad keys.
    static std::string keyText(int key);
    bool isSubscribed(physicalEventObserver* observer) const;
    std::size_t subscriberCount() const;

private:
    // 0 when the observer does not take keypad button events, else its delivery mode.
    int keypadDelivery(physicalEventObserver* observer) const;
    void deliverPress(physicalEventObserver* observer, int key);

    mutable std::mutex mMutex;
    std::map<physicalEventObserver*, std::vector<PhysDefs::SubscriptionGrp>> mSubscriptions;
    LoopTasks mTasks;
};
