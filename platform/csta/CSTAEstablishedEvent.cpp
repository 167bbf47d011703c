// Call-control event: a call was answered.
#include "csta/CSTAEstablishedEvent.h"

#include "csta/CSTAEventObserverBase.h"
#include "csta/CSTAMonitorFilter.h"

CSTAEstablishedEvent::CSTAEstablishedEvent(const std::string& monitorCrossRefID, const std::string& callID,
                                           const std::string& answeringDevice)
    : CSTAEvent(monitorCrossRefID), mCallID(callID), mAnsweringDevice(answeringDevice) {}

void CSTAEstablishedEvent::dispatch(CSTAEventObserverBase* observer) {
    if (observer != nullptr) {
        observer->handleCSTAEstablishedEvent(this);
    }
}

bool CSTAEstablishedEvent::isFilteredOutBy(const CSTAMonitorFilter& filter) const {
    return filter.filtersEstablished();
}
