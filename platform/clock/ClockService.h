// The phone's clock, taken from the machine's local time.
#pragma once

#include <chrono>
#include <string>

#include "clock/ClockServiceIfc.h"

class ClockService : public ClockServiceIfc {
public:
    std::string getTimeText(int format) override;
    // "HH:MM:SS" of a moment, in local time.
    static std::string timeText(std::chrono::system_clock::time_point when);
};
