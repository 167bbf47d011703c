// Tones for the phonelet: the three beep lengths through the media service.
#include "AGPAudioHandler.h"

#define AGP_LOG_MODULE "AGPAudioHandler"
#define AGP_LOG_SOURCE "./src/AGPAudioHandler.cpp"

#include "AGPLog.h"

bool AGPAudioHandler::startAGPAudioHandler(MediaControlServiceIfc* service) {
    if (service == nullptr) {
        AGP_LOG(2, "AGPAudioHandler startup failed: can't find Media Control Service");
        return false;
    }
    mService = service;
    return true;
}
