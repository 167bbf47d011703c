// A call-control event reported by a monitor.
#pragma once

#include <string>

class CSTAEventObserverBase;
class CSTAMonitorFilter;

class CSTAEvent {
public:
    explicit CSTAEvent(const std::string& monitorCrossRefID) : mMonitorCrossRefID(monitorCrossRefID) {}
    virtual ~CSTAEvent() = default;

    // The monitor that reported the event.
    const std::string& getMonitorCrossRefID() const { return mMonitorCrossRefID; }
    // Calls the observer's handleCSTA...Event operation for this event's kind; nothing for null.
    virtual void dispatch(CSTAEventObserverBase* observer) = 0;
    // Whether a monitor with this filter leaves events of this kind out.
    virtual bool isFilteredOutBy(const CSTAMonitorFilter& filter) const = 0;

private:
    std::string mMonitorCrossRefID;
};
