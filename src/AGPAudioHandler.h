// Tones for the phonelet: the three beep lengths through the media service.
#pragma once

class MediaControlServiceIfc;

class AGPAudioHandler {
public:
    AGPAudioHandler() = default;
    virtual ~AGPAudioHandler() = default;
    AGPAudioHandler(const AGPAudioHandler&) = delete;
    AGPAudioHandler& operator=(const AGPAudioHandler&) = delete;

    bool startAGPAudioHandler(MediaControlServiceIfc* service);
    MediaControlServiceIfc* getService() const { return mService; }

private:
    MediaControlServiceIfc* mService = nullptr;
};
