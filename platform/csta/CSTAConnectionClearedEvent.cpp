// Call-control event: a connection of a call ended.
#include "csta/CSTAConnectionClearedEvent.h"

#include "csta/CSTAEventObserverBase.h"
#include "csta/CSTAMonitorFilter.h"

CSTAConnectionClearedEvent::CSTAConnectionClearedEvent(const std::string& monitorCrossRefID,
                                                       const std::string& callID,
                                                       const std::string& releasingDevice)
    : CSTAEvent(monitorCrossRefID), mCallID(callID), mReleasingDevice(releasingDevice) {}

void CSTAConnectionClearedEvent::dispatch(CSTAEventObserverBase* observer) {
    if (observer != nullptr) {
        observer->handleCSTAConnectionClearedEvent(this);
    }
}

bool CSTAConnectionClearedEvent::isFilteredOutBy(const CSTAMonitorFilter& filter) const {
    return filter.filtersConnectionCleared();
}
