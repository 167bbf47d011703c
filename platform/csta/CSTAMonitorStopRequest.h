// Call-control request: end a monitor.
#pragma once

#include <string>

#include "csta/CSTARequest.h"

class CSTAMonitorStopRequest : public CSTARequest {
public:
    void setMonitorCrossRefID(const std::string& crossRefID) { mCrossRefID = crossRefID; }
    const std::string& getMonitorCrossRefID() const { return mCrossRefID; }

private:
    std::string mCrossRefID;
};
