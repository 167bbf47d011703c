// The platform's event thread: one thread running queued tasks, some of them after a delay.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

// Everything the platform delivers "on the host's thread" (life-cycle calls, widget callbacks,
// key presses, configuration changes, pushes, timer expiries) runs as a task here, one at a time,
// in the order posted (delayed tasks by due time, then posting order). Callers never hold a
// platform lock while a task runs, so tasks may call back into the phonelet freely.
class EventLoop {
public:
    using Task = std::function<void()>;
    using TaskId = std::uint64_t;

    EventLoop();
    // Stops the loop (see stop) and joins the thread.
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    // Queues a task to run as soon as possible. Returns its id, or 0 once the loop has stopped.
    TaskId post(Task task);
    // Queues a task to run after `delay`. Returns its id (for cancel), or 0 once stopped.
    TaskId postDelayed(std::chrono::milliseconds delay, Task task);
    // Removes a task that has not started yet. Returns true when it was still waiting.
    bool cancel(TaskId id);
    // Runs `task` on the loop and waits for it; runs it directly when called on the loop itself.
    // Returns false, without running it, once the loop has stopped.
    bool runAndWait(Task task);
    // Waits until every task due now has run (delayed tasks not yet due are not waited for).
    void drain();
    // Lets the task under way finish, drops the rest, and ends the thread. Idempotent.
    void stop();

    bool isLoopThread() const { return std::this_thread::get_id() == mThread.get_id(); }

private:
    using Clock = std::chrono::steady_clock;
    using Key = std::pair<Clock::time_point, TaskId>;

    void run();

    std::mutex mMutex;
    std::condition_variable mChanged;
    std::map<Key, Task> mTasks;
    std::map<TaskId, Clock::time_point> mDueTimes;
    TaskId mNextId = 1;
    bool mStopping = false;
    bool mBusy = false;
    std::thread mThread;
};
