// The platform service that tells the phone's time.
#pragma once

#include <string>

#include "services/PlatformService.h"

class ClockServiceIfc : public PlatformService {
public:
    static constexpr const char* SERVICE_NAME = "ClockServiceIfc";

    // The phone's current local time as "HH:MM:SS" (24 hours). `format` is reserved for other
    // layouts; every value gives this one. Callable from any thread.
    virtual std::string getTimeText(int format) = 0;
};
