// The emulated phone's keypad.
#include "physical/PhysicalInterfaceService.h"

#include "logging/Log.h"
#include "physical/physicalEventObserver.h"

namespace {
const char* const kModule = "PhysicalInterfaceService";
const char* const kSource = "./platform/physical/PhysicalInterfaceService.cpp";
} // namespace

PhysicalInterfaceService::PhysicalInterfaceService(EventLoop& loop) : mTasks(loop) {}

PhysicalInterfaceService::~PhysicalInterfaceService() {
    mTasks.close();
}

bool PhysicalInterfaceService::subscribe(physicalEventObserver* observer,
                                         const std::vector<PhysDefs::SubscriptionGrp>& groups) {
    if (observer == nullptr || groups.empty()) {
        if (loggingOnAppUni(kModule, 2)) {
            logAppUni(kModule, kSource, 2, __LINE__,
                      "subscribe refused: no observer or no subscription group");
        }
        return false;
    }
    std::lock_guard<std::mutex> lock(mMutex);
    mSubscriptions[observer] = groups;
    return true;
}

bool PhysicalInterfaceService::unsubscribe(physicalEventObserver* observer) {
    std::lock_guard<std::mutex> lock(mMutex);
    return mSubscriptions.erase(observer) != 0;
}

bool PhysicalInterfaceService::isSubscribed(physicalEventObserver* observer) const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mSubscriptions.count(observer) != 0;
}

std::size_t PhysicalInterfaceService::subscriberCount() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mSubscriptions.size();
}

std::string PhysicalInterfaceService::keyText(int key) {
    if (key >= 0 && key <= 9) {
        return std::string(1, static_cast<char>('0' + key));
    }
    if (key == 10) {
        return "*";
    }
    if (key == 11) {
        return "#";
    }
    return "";
}

bool PhysicalInterfaceService::pressKey(int key) {
    if (keyText(key).empty()) {
        if (loggingOnAppUni(kModule, 2)) {
            logAppUni(kModule, kSource, 2, __LINE__, "pressKey: %d is not a dialpad key", key);
        }
        return false;
    }
    std::vector<physicalEventObserver*> observers;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const auto& subscription : mSubscriptions) {
            observers.push_back(subscription.first);
        }
    }
    // Whether an observer still wants the press is decided when it is delivered: one that
    // unsubscribed in between (the application went to the back) does not get it.
    for (physicalEventObserver* observer : observers) {
        mTasks.post([this, observer, key] { deliverPress(observer, key); });
    }
    return true;
}

int PhysicalInterfaceService::keypadDelivery(physicalEventObserver* observer) const {
    std::lock_guard<std::mutex> lock(mMutex);
    auto found = mSubscriptions.find(observer);
    if (found == mSubscriptions.end()) {
        return 0;
    }
    for (const PhysDefs::SubscriptionGrp& group : found->second) {
        if (group.deviceClass == PhysDefs::DeviceClassKeypad &&
            group.eventKind == PhysDefs::EventKindButtons) {
            return group.delivery;
        }
    }
    return 0;
}

void PhysicalInterfaceService::deliverPress(physicalEventObserver* observer, int key) {
    const int delivery = keypadDelivery(observer);
    if (delivery == 0) {
        return;
    }
    const std::string text = keyText(key);
    observer->buttonPressedEvent(PhysDefs::KeyFunctionDialpad, key, PhysDefs::KeyPressed, text);
    if (delivery != PhysDefs::DeliveryOncePerPress && keypadDelivery(observer) != 0) {
        observer->buttonPressedEvent(PhysDefs::KeyFunctionDialpad, key, PhysDefs::KeyReleased, text);
    }
}
