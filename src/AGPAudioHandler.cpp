// Tones for the phonelet: the three beep lengths through the media service.
#include "AGPAudioHandler.h"

#define AGP_LOG_MODULE "AGPAudioHandler"
#define AGP_LOG_SOURCE "./src/AGPAudioHandler.cpp"

#include "AGPLog.h"
#include "media/MediaControlServiceIfc.h"

bool AGPAudioHandler::startAGPAudioHandler(MediaControlServiceIfc* service) {
    if (service == nullptr) {
        AGP_LOG(2, "AGPAudioHandler startup failed: can't find Media Control Service");
        return false;
    }
    mService = service;
    return true;
}

int AGPAudioHandler::playBeep(AGPBeepType type) {
    int beep = 0;
    switch (type) {
    case SHORT:
        beep = MediaControlServiceIfc::BeepShort;
        break;
    case STANDARD:
        beep = MediaControlServiceIfc::BeepStandard;
        break;
    case LONG:
        beep = MediaControlServiceIfc::BeepLong;
        break;
    default:
        return 0;
    }
    return mService != nullptr ? mService->playSystemBeep(beep) : 0;
}
