// The emulated phone's sounds: beeps are recorded, with their time, for the host to show.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

#include "media/MediaControlServiceIfc.h"

class MediaControlService : public MediaControlServiceIfc {
public:
    struct Beep {
        int beepNumber = 0;
        std::chrono::system_clock::time_point when;
        // Counts every beep since the phone started, 1 for the first: readers that only see the
        // latest beeps tell the new ones from those they have seen by it.
        std::uint64_t sequence = 0;
    };
    // Only the latest beeps are kept.
    static constexpr std::size_t MAX_RECORDED = 100;

    int playSystemBeep(int beepNumber) override;
    // The beeps played, oldest first.
    std::vector<Beep> beeps() const;
    void clear();

private:
    mutable std::mutex mMutex;
    std::deque<Beep> mBeeps;
    std::uint64_t mPlayed = 0;
};
