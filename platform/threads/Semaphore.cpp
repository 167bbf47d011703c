// Counting semaphore of the phone platform.
#include "threads/Semaphore.h"

#include <chrono>

#include "threads/ThreadActivity.h"

Semaphore::Semaphore(int initial, int maximum, bool reentrant)
    : mCount(initial), mMaximum(maximum), mReentrant(reentrant), mNestedTakes(0) {
    if (mMaximum == -1) {
        ThreadActivity::workPosted(mCount);
    }
}

Semaphore::~Semaphore() {
    if (mMaximum == -1) {
        ThreadActivity::workPosted(-mCount);
    }
}

bool Semaphore::take(int timeout) {
    std::unique_lock<std::mutex> lock(mMutex);
    const std::thread::id self = std::this_thread::get_id();
    if (mReentrant && mNestedTakes > 0 && mHolder == self) {
        ++mNestedTakes;
        return true;
    }
    auto available = [this] { return mCount > 0; };
    if (timeout < 0 && mMaximum == -1 && !available()) {
        // A thread waiting for its next piece of work: idle until given some.
        ThreadActivity::waitingForWork(true);
        mAvailable.wait(lock, available);
        ThreadActivity::waitingForWork(false);
    } else if (timeout < 0) {
        mAvailable.wait(lock, available);
    } else if (!mAvailable.wait_for(lock, std::chrono::milliseconds(timeout), available)) {
        return false;
    }
    --mCount;
    if (mMaximum == -1) {
        ThreadActivity::workPosted(-1);
    }
    if (mReentrant) {
        mHolder = self;
        mNestedTakes = 1;
    }
    return true;
}

bool Semaphore::give() {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mReentrant && mNestedTakes > 0 && mHolder == std::this_thread::get_id()) {
        if (--mNestedTakes > 0) {
            return true;
        }
        mHolder = std::thread::id();
    }
    if (mMaximum != -1 && mCount >= mMaximum) {
        return false;
    }
    ++mCount;
    if (mMaximum == -1) {
        ThreadActivity::workPosted(1);
    }
    mAvailable.notify_one();
    return true;
}
