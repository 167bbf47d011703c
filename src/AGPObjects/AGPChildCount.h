// Bounds and count of one kind of child (or of a group of alternative kinds) of a container element.
#pragma once

#include <cstdint>

struct AGPChildCount {
    std::int32_t mMinimum;
    std::int32_t mMaximum; // -1: unbounded
    std::int32_t mCount = 0;

    AGPChildCount(std::int32_t minimum, std::int32_t maximum) : mMinimum(minimum), mMaximum(maximum) {}

    bool hasRoom() const { return mMaximum == -1 || mCount < mMaximum; }
    bool isCountValid() const { return mCount >= mMinimum && (mMaximum == -1 || mCount <= mMaximum); }
};
