// The platform service that hands key presses and other hardware events to subscribers.
#pragma once

#include <vector>

#include "physical/PhysDefs.h"
#include "services/PlatformService.h"

class physicalEventObserver;

class PhysicalInterfaceServiceIfc : public PlatformService {
public:
    static constexpr const char* SERVICE_NAME = "PhysicalInterfaceServiceIfc";

    // Subscribes `observer` for the given groups, replacing any earlier subscription of it.
    // False for a null observer or an empty list.
    virtual bool subscribe(physicalEventObserver* observer,
                           const std::vector<PhysDefs::SubscriptionGrp>& groups) = 0;
    // Ends the observer's subscription; from then on no event starts for it. False when it had none.
    virtual bool unsubscribe(physicalEventObserver* observer) = 0;
};
