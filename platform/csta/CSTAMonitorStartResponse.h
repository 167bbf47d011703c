// Answer to a monitor start: the monitor's cross-reference id.
#pragma once

#include <string>

#include "csta/CSTAResponse.h"

class CSTAMonitorStartResponse : public CSTAResponse {
public:
    explicit CSTAMonitorStartResponse(const std::string& crossRefID) : mCrossRefID(crossRefID) {}
    std::string GetMonitorCrossRefID() const { return mCrossRefID; }

private:
    std::string mCrossRefID;
};
