// Counting semaphore of the phone platform, optionally re-entrant for the thread that holds it.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

// A counting semaphore. A maximum of -1 means no upper bound. Created re-entrant, the holding
// thread may take it again; it is released when every nested take has been given back.
// Re-entrance is meant for binary semaphores (initial 1, maximum 1).
class Semaphore {
public:
    Semaphore(int initial, int maximum, bool reentrant);
    ~Semaphore();
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    // Waits for the semaphore; timeout in milliseconds, -1 waits without limit.
    // Returns true when it was taken, false when the time ran out.
    bool take(int timeout);
    // Gives the semaphore back and wakes one waiter. Returns false, changing nothing, when the
    // count already stands at its maximum.
    bool give();

private:
    std::mutex mMutex;
    std::condition_variable mAvailable;
    int mCount;
    const int mMaximum;
    const bool mReentrant;
    std::thread::id mHolder;
    int mNestedTakes;
};
