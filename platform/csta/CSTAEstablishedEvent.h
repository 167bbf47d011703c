// Call-control event: a call was answered.
#pragma once

#include <string>

#include "csta/CSTAEvent.h"

class CSTAEstablishedEvent : public CSTAEvent {
public:
    CSTAEstablishedEvent(const std::string& monitorCrossRefID, const std::string& callID,
                         const std::string& answeringDevice);

    std::string getCallID() const { return mCallID; }
    std::string getAnsweringDevice() const { return mAnsweringDevice; }
    void dispatch(CSTAEventObserverBase* observer) override;
    bool isFilteredOutBy(const CSTAMonitorFilter& filter) const override;

private:
    std::string mCallID;
    std::string mAnsweringDevice;
};
