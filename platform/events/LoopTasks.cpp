// Tasks that an object posts to the event loop about itself.
#include "events/LoopTasks.h"

#include <utility>

LoopTasks::LoopTasks(EventLoop& loop) : mLoop(loop), mOpen(std::make_shared<std::atomic<bool>>(true)) {}

LoopTasks::~LoopTasks() {
    close();
}

EventLoop::TaskId LoopTasks::post(EventLoop::Task task) {
    return postDelayed(std::chrono::milliseconds(0), std::move(task));
}

EventLoop::TaskId LoopTasks::postDelayed(std::chrono::milliseconds delay, EventLoop::Task task) {
    if (!mOpen->load()) {
        return 0;
    }
    return mLoop.postDelayed(delay, [open = mOpen, task = std::move(task)] {
        if (open->load()) {
            task();
        }
    });
}

void LoopTasks::close() {
    if (!mOpen->load()) {
        return;
    }
    if (mLoop.isLoopThread()) {
        mOpen->store(false);
        return;
    }
    // Clearing the flag as a task of its own orders it after any owner task under way. When the
    // loop has stopped its thread has ended, so no task can be running any more.
    auto open = mOpen;
    if (!mLoop.runAndWait([open] { open->store(false); })) {
        mOpen->store(false);
    }
}
