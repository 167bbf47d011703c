// A counter that wakes its waiters when it moves: how the event stream hears of news.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

class ChangeSignal {
public:
    void notify() {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            ++mCount;
        }
        mMoved.notify_all();
    }

    std::uint64_t count() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCount;
    }

    // Waits until the count differs from `seen` or `timeout` passes; returns the count.
    std::uint64_t waitPast(std::uint64_t seen, std::chrono::milliseconds timeout) const {
        std::unique_lock<std::mutex> lock(mMutex);
        mMoved.wait_for(lock, timeout, [&] { return mCount != seen; });
        return mCount;
    }

private:
    mutable std::mutex mMutex;
    mutable std::condition_variable mMoved;
    std::uint64_t mCount = 0;
};
