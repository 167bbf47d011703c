// The emulated phone's sounds.
#include "media/MediaControlService.h"

#include "logging/Log.h"

namespace {
const char* const kModule = "MediaControlService";
const char* const kSource = "./platform/media/MediaControlService.cpp";
} // namespace

int MediaControlService::playSystemBeep(int beepNumber) {
    if (beepNumber < BeepClick || beepNumber > BeepLong) {
        if (loggingOnAppUni(kModule, 2)) {
            logAppUni(kModule, kSource, 2, __LINE__, "playSystemBeep: unknown beep %d", beepNumber);
        }
        return 0;
    }
    if (loggingOnAppUni(kModule, 5)) {
        logAppUni(kModule, kSource, 5, __LINE__, "playSystemBeep: beep %d", beepNumber);
    }
    std::lock_guard<std::mutex> lock(mMutex);
    mBeeps.push_back(Beep{beepNumber, std::chrono::system_clock::now(), ++mPlayed});
    if (mBeeps.size() > MAX_RECORDED) {
        mBeeps.pop_front();
    }
    return 1;
}

std::vector<MediaControlService::Beep> MediaControlService::beeps() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return std::vector<Beep>(mBeeps.begin(), mBeeps.end());
}

void MediaControlService::clear() {
    std::lock_guard<std::mutex> lock(mMutex);
    mBeeps.clear();
}
