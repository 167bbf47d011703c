// The platform's event thread.
#include "events/EventLoop.h"

#include "logging/Log.h"

#include <pthread.h>

#include <future>

EventLoop::EventLoop() {
    mThread = std::thread([this] {
        pthread_setname_np(pthread_self(), "platform-events");
        setLogThreadName("platform-events");
        run();
    });
}

EventLoop::~EventLoop() {
    stop();
}

EventLoop::TaskId EventLoop::post(Task task) {
    return postDelayed(std::chrono::milliseconds(0), std::move(task));
}

EventLoop::TaskId EventLoop::postDelayed(std::chrono::milliseconds delay, Task task) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mStopping) {
        return 0;
    }
    const TaskId id = mNextId++;
    const Clock::time_point due = Clock::now() + delay;
    mTasks.emplace(Key(due, id), std::move(task));
    mDueTimes.emplace(id, due);
    mChanged.notify_all();
    return id;
}

bool EventLoop::cancel(TaskId id) {
    std::lock_guard<std::mutex> lock(mMutex);
    auto due = mDueTimes.find(id);
    if (due == mDueTimes.end()) {
        return false;
    }
    mTasks.erase(Key(due->second, id));
    mDueTimes.erase(due);
    mChanged.notify_all();
    return true;
}

bool EventLoop::runAndWait(Task task) {
    if (isLoopThread()) {
        task();
        return true;
    }
    auto done = std::make_shared<std::promise<void>>();
    std::future<void> finished = done->get_future();
    if (post([task = std::move(task), done] {
            task();
            done->set_value();
        }) == 0) {
        return false;
    }
    // A stop before the task ran drops it; the promise then breaks instead of hanging.
    try {
        finished.get();
    } catch (const std::future_error&) {
        return false;
    }
    return true;
}

void EventLoop::drain() {
    if (isLoopThread()) {
        return;
    }
    std::unique_lock<std::mutex> lock(mMutex);
    const Clock::time_point now = Clock::now();
    mChanged.wait(
        lock, [&] { return mStopping || (!mBusy && (mTasks.empty() || mTasks.begin()->first.first > now)); });
}

void EventLoop::stop() {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mStopping = true;
        mChanged.notify_all();
    }
    if (mThread.joinable() && !isLoopThread()) {
        mThread.join();
    }
    std::map<Key, Task> dropped;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        dropped.swap(mTasks);
        mDueTimes.clear();
    }
}

void EventLoop::run() {
    std::unique_lock<std::mutex> lock(mMutex);
    while (!mStopping) {
        if (mTasks.empty()) {
            mChanged.wait(lock);
            continue;
        }
        const Clock::time_point due = mTasks.begin()->first.first;
        if (due > Clock::now()) {
            mChanged.wait_until(lock, due);
            continue;
        }
        auto next = mTasks.begin();
        Task task = std::move(next->second);
        mDueTimes.erase(next->first.second);
        mTasks.erase(next);
        mBusy = true;
        lock.unlock();
        task();
        task = nullptr;
        lock.lock();
        mBusy = false;
        mChanged.notify_all();
    }
}
