// A timer that reports its expiry as a command to its listeners on the platform's event thread.
#pragma once

#include <cstdint>
#include <vector>

#include "display/Core.h"

namespace DisplayAPI {

class Command;
class CommandListener;

// Expiries run on the active display's event loop: commandAction(command, nullptr) on every
// listener, with the command added to the timer (Command::standard(TIMER) when none was added;
// none at all once the added command was deleted). Stopping, restarting and deleting are safe at
// any time, also while an expiry is due; an expiry overtaken by a stop or a restart is dropped.
class Timer {
public:
    explicit Timer(unsigned milliseconds);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void addCommandListener(CommandListener* listener);
    void removeCommandListener(CommandListener* listener);
    void addCommand(Command* command);
    // With true, a start gives exactly one expiry; otherwise the timer repeats until stopped.
    void enableSingleShot(bool singleShot);
    // (Re)arms the timer with its interval, or with a new one. False without a display to run it.
    bool start();
    bool start(unsigned milliseconds);
    void stop();
    bool isRunning() const;
    void setOwnerId(unsigned long id);
    unsigned long getOwnerId() const;

private:
    void schedule();
    void cancelPending();
    // With the lock held: whether the expiry of `generation` is still wanted, and for whom.
    bool takeExpiry(std::uint64_t generation, std::vector<CommandListener*>& listeners, Command*& command);

    unsigned mInterval;
    bool mSingleShot = false;
    bool mRunning = false;
    std::vector<CommandListener*> mListeners;
    core::Ref<Command> mCommand;
    bool mCommandGiven = false;
    unsigned long mOwnerId = 0;
    std::uint64_t mGeneration = 0;
    std::uint64_t mTask = 0;
    Display* mDisplay = nullptr;
    core::Lifetime mLife;
};

} // namespace DisplayAPI
