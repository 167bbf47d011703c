// The application's receiver of commands triggered on widgets and timers.
#pragma once

namespace DisplayAPI {

class Command;
class Displayable;

// Called on the platform's event thread, never while the library holds its lock and never from
// inside a call the application makes. `displayable` is the widget the command was triggered on
// (null for a timer expiry). Both stay alive until the call returns, even when another thread
// deletes them meanwhile (the delete waits); keep neither pointer beyond the call.
class CommandListener {
public:
    virtual ~CommandListener() = default;
    virtual void commandAction(Command* command, Displayable* displayable) = 0;
    // Called after every commandAction of this listener; does nothing unless overridden.
    virtual void postCommandAction(Command* /*command*/, Displayable* /*displayable*/) {}
};

} // namespace DisplayAPI
