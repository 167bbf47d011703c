// The phone's clock.
#include "clock/ClockService.h"

#include <ctime>

std::string ClockService::getTimeText(int) {
    return timeText(std::chrono::system_clock::now());
}

std::string ClockService::timeText(std::chrono::system_clock::time_point when) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[16];
    std::strftime(text, sizeof text, "%H:%M:%S", &local);
    return text;
}
