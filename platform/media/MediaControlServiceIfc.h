// The platform service that plays the phone's system sounds.
#pragma once

#include "services/PlatformService.h"

class MediaControlServiceIfc : public PlatformService {
public:
    static constexpr const char* SERVICE_NAME = "MediaControlServiceIfc";

    enum SystemBeep { BeepClick = 1, BeepShort = 2, BeepStandard = 3, BeepLong = 4 };

    // Plays a system beep without waiting for it to end. Returns 1 when it is played, 0 for a
    // number that is not a SystemBeep. Callable from any thread.
    virtual int playSystemBeep(int beepNumber) = 0;
};
