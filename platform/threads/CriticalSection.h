// Scope guard that holds a platform semaphore for the lifetime of a block.
#pragma once

#include "threads/Semaphore.h"

class CriticalSection {
public:
    explicit CriticalSection(Semaphore* semaphore) : mSemaphore(semaphore) { mSemaphore->take(-1); }
    ~CriticalSection() { mSemaphore->give(); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

private:
    Semaphore* mSemaphore;
};
