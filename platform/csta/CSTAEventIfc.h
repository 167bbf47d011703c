// Receiver of the call-control events of a monitor.
#pragma once

class CSTAEvent;

// Given to CSTAMonitorStartRequest::setSourceService; the monitor's events arrive on the
// platform's event loop. The event belongs to the platform and lives only for the call.
class CSTAEventIfc {
public:
    virtual ~CSTAEventIfc() = default;
    virtual void deliverEvent(CSTAEvent* event) = 0;
};
