// Call-control event: a connection of a call ended.
#pragma once

#include <string>

#include "csta/CSTAEvent.h"

class CSTAConnectionClearedEvent : public CSTAEvent {
public:
    CSTAConnectionClearedEvent(const std::string& monitorCrossRefID, const std::string& callID,
                               const std::string& releasingDevice);

    std::string getDroppedConnectionCallID() const { return mCallID; }
    std::string getReleasingDevice() const { return mReleasingDevice; }
    void dispatch(CSTAEventObserverBase* observer) override;
    bool isFilteredOutBy(const CSTAMonitorFilter& filter) const override;

private:
    std::string mCallID;
    std::string mReleasingDevice;
};
