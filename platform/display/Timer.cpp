// Timers on the platform's event loop.
#include "display/Timer.h"

#include <algorithm>
#include <chrono>

#include "display/Command.h"
#include "display/CommandListener.h"
#include "display/Display.h"
#include "events/EventLoop.h"
#include "logging/Log.h"

namespace DisplayAPI {

namespace {

const char* const logModule = "DisplayAPI";

} // namespace

Timer::Timer(unsigned milliseconds) : mInterval(milliseconds) {}

Timer::~Timer() {
    core::Lock lock(core::mutex());
    cancelPending();
    mRunning = false;
    mLife.end();
}

void Timer::addCommandListener(CommandListener* listener) {
    core::Lock lock(core::mutex());
    if (listener != nullptr &&
        std::find(mListeners.begin(), mListeners.end(), listener) == mListeners.end()) {
        mListeners.push_back(listener);
    }
}

void Timer::removeCommandListener(CommandListener* listener) {
    core::Lock lock(core::mutex());
    mListeners.erase(std::remove(mListeners.begin(), mListeners.end(), listener), mListeners.end());
}

void Timer::addCommand(Command* command) {
    core::Lock lock(core::mutex());
    mCommand = command != nullptr ? command->ref() : core::Ref<Command>();
    mCommandGiven = command != nullptr;
}

void Timer::enableSingleShot(bool singleShot) {
    core::Lock lock(core::mutex());
    mSingleShot = singleShot;
}

bool Timer::start() {
    core::Lock lock(core::mutex());
    return start(mInterval);
}

bool Timer::start(unsigned milliseconds) {
    core::Lock lock(core::mutex());
    cancelPending();
    mInterval = milliseconds;
    mDisplay = core::activeDisplay();
    if (mDisplay == nullptr) {
        if (loggingOnAppUni(logModule, 2)) {
            logAppUni(logModule, __FILE__, 2, __LINE__,
                      "Timer started without a display; it will not expire");
        }
        mRunning = false;
        return false;
    }
    mRunning = true;
    schedule();
    return true;
}

void Timer::stop() {
    core::Lock lock(core::mutex());
    cancelPending();
    mRunning = false;
}

bool Timer::isRunning() const {
    core::Lock lock(core::mutex());
    return mRunning;
}

void Timer::setOwnerId(unsigned long id) {
    core::Lock lock(core::mutex());
    mOwnerId = id;
}

unsigned long Timer::getOwnerId() const {
    core::Lock lock(core::mutex());
    return mOwnerId;
}

void Timer::schedule() {
    const std::uint64_t generation = ++mGeneration;
    const core::Ref<Timer> self(this, mLife);
    mTask = mDisplay->eventLoop().postDelayed(std::chrono::milliseconds(mInterval), [self, generation] {
        std::vector<CommandListener*> listeners;
        Command* command = nullptr;
        core::CallbackPins pins;
        {
            core::Lock lock(core::mutex());
            Timer* timer = self.get();
            if (timer == nullptr || !timer->takeExpiry(generation, listeners, command)) {
                return;
            }
            pins.hold({command});
        }
        for (CommandListener* listener : listeners) {
            listener->commandAction(command, nullptr);
            listener->postCommandAction(command, nullptr);
        }
    });
}

// Only cancels on the loop the task was posted to, and only while that display still stands.
void Timer::cancelPending() {
    ++mGeneration;
    if (mTask != 0 && mDisplay != nullptr && mDisplay == core::activeDisplay()) {
        mDisplay->eventLoop().cancel(mTask);
    }
    mTask = 0;
}

bool Timer::takeExpiry(std::uint64_t generation, std::vector<CommandListener*>& listeners,
                       Command*& command) {
    if (generation != mGeneration || !mRunning) {
        return false;
    }
    mTask = 0;
    if (mSingleShot) {
        mRunning = false;
    } else if (core::activeDisplay() == mDisplay) {
        schedule();
    }
    command = mCommandGiven ? mCommand.get() : Command::standard(Command::TIMER);
    listeners = mListeners;
    return command != nullptr;
}

} // namespace DisplayAPI
