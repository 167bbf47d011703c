// Call-control request: call a number from a device.
#pragma once

#include <string>

#include "csta/CSTARequest.h"

class CSTAMakeCallRequest : public CSTARequest {
public:
    void SetCallingDevice(const std::string& device) { mCallingDevice = device; }
    const std::string& GetCallingDevice() const { return mCallingDevice; }
    void SetCalledDevice(const std::string& device) { mCalledDevice = device; }
    const std::string& GetCalledDevice() const { return mCalledDevice; }

private:
    std::string mCallingDevice;
    std::string mCalledDevice;
};
