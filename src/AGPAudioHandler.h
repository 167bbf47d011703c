// Tones for the phonelet: the three beep lengths through the media service.
#pragma once

class MediaControlServiceIfc;

class AGPAudioHandler {
public:
    enum AGPBeepType : int { SHORT = 0, STANDARD = 1, LONG = 2 };

    AGPAudioHandler() = default;
    virtual ~AGPAudioHandler() = default;
    AGPAudioHandler(const AGPAudioHandler&) = delete;
    AGPAudioHandler& operator=(const AGPAudioHandler&) = delete;

    bool startAGPAudioHandler(MediaControlServiceIfc* service);
    MediaControlServiceIfc* getService() const { return mService; }
    // The media service's result, or 0 for a type outside the three beeps (nothing is played).
    int playBeep(AGPBeepType type);

private:
    MediaControlServiceIfc* mService = nullptr;
};
