// Call-control request: drop a device's connection to a call.
#pragma once

#include <string>

#include "csta/CSTARequest.h"

class CSTAClearConnectionRequest : public CSTARequest {
public:
    void SetCallID(const std::string& callID) { mCallID = callID; }
    const std::string& GetCallID() const { return mCallID; }
    void SetDeviceID(const std::string& device) { mDevice = device; }
    const std::string& GetDeviceID() const { return mDevice; }

private:
    std::string mCallID;
    std::string mDevice;
};
