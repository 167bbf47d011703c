// Call-control request: report the events of a device to a receiver.
#pragma once

#include <string>

#include "csta/CSTAMonitorFilter.h"
#include "csta/CSTARequest.h"

class CSTAEventIfc;

class CSTAMonitorStartRequest : public CSTARequest {
public:
    // Receives the monitor's events until the monitor is stopped; not owned.
    void setSourceService(CSTAEventIfc* source) { mSource = source; }
    CSTAEventIfc* getSourceService() const { return mSource; }
    void setDeviceObject(const std::string& device) { mDevice = device; }
    const std::string& getDeviceObject() const { return mDevice; }
    void setRequestedMonitorFilter(const CSTAMonitorFilter& filter) { mFilter = filter; }
    const CSTAMonitorFilter& getRequestedMonitorFilter() const { return mFilter; }

private:
    CSTAEventIfc* mSource = nullptr;
    std::string mDevice;
    CSTAMonitorFilter mFilter;
};
