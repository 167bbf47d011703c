// Whether the platform's threads have work: the settled signal of the emulated phone.
#include "threads/ThreadActivity.h"

#include <mutex>

namespace {

std::mutex gMutex;
int gRunning = 0;
int gWaiting = 0;
int gPosted = 0;

} // namespace

namespace ThreadActivity {

void threadStarted() {
    std::lock_guard<std::mutex> lock(gMutex);
    ++gRunning;
}

void threadEnded() {
    std::lock_guard<std::mutex> lock(gMutex);
    --gRunning;
}

void waitingForWork(bool waiting) {
    std::lock_guard<std::mutex> lock(gMutex);
    gWaiting += waiting ? 1 : -1;
}

void workPosted(int count) {
    std::lock_guard<std::mutex> lock(gMutex);
    gPosted += count;
}

bool allWaitingForWork() {
    std::lock_guard<std::mutex> lock(gMutex);
    return gRunning == gWaiting && gPosted == 0;
}

} // namespace ThreadActivity
