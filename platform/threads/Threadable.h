// Body of a platform thread.
#pragma once

class Threadable {
public:
    virtual ~Threadable() = default;
    // Runs on the new thread; the thread ends when it returns.
    virtual void run() = 0;
    // The platform runs every thread at its default priority; the value is informative.
    virtual int getThreadPriorityForPlatform() { return 0; }
    // Kind of thread, for diagnostics; 0 for an ordinary worker.
    virtual int type() { return 0; }
};
