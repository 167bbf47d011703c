// Tasks that an object posts to the event loop about itself, dropped once the object is gone.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>

#include "events/EventLoop.h"

// A service that posts tasks capturing `this` must not have them run after it was destroyed.
// Tasks posted through LoopTasks run only while it is open; close() (also run by the destructor)
// waits, through the loop, for a task of the owner that is under way, so that after it returns
// no task of the owner runs or will run. Owners call close() first in their destructor.
// Closing from a task on the loop itself is fine; closing on another thread while a loop task
// waits for that thread would deadlock, so hosts destroy services on the loop or after it stopped.
class LoopTasks {
public:
    explicit LoopTasks(EventLoop& loop);
    ~LoopTasks();
    LoopTasks(const LoopTasks&) = delete;
    LoopTasks& operator=(const LoopTasks&) = delete;

    // Same results as EventLoop's post and postDelayed; 0 also once closed.
    EventLoop::TaskId post(EventLoop::Task task);
    EventLoop::TaskId postDelayed(std::chrono::milliseconds delay, EventLoop::Task task);
    bool cancel(EventLoop::TaskId id) { return mLoop.cancel(id); }
    void close();

    EventLoop& loop() { return mLoop; }

private:
    EventLoop& mLoop;
    std::shared_ptr<std::atomic<bool>> mOpen;
};
