// Machinery shared by the widget classes: the library lock, lifetime tokens, callbacks and change notices.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <vector>

namespace DisplayAPI {

class Command;
class Display;
class Displayable;
class Item;

namespace core {

// One lock for the whole library: widgets of several tabs are built on several threads while the
// host reads snapshots and presses keys, and widgets point at each other freely. It is recursive
// because widgets call each other's public operations while holding it. No callback into the
// application ever runs while it is held.
using Mutex = std::recursive_mutex;
using Lock = std::lock_guard<Mutex>;
Mutex& mutex();

// Lives exactly as long as its object. Widgets keep Refs instead of bare pointers to things they
// do not own (commands, displayables, tickers), so that deleting the owned thing detaches it from
// every widget at once without a registry of back links.
class Lifetime {
public:
    Lifetime() : mToken(std::make_shared<char>(0)) {}
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;
    void end() { mToken.reset(); }
    bool ended() const { return !mToken; }
    std::weak_ptr<char> watch() const { return mToken; }

private:
    std::shared_ptr<char> mToken;
};

template <class T> class Ref {
public:
    Ref() = default;
    Ref(T* object, const Lifetime& life) : mObject(object), mToken(life.watch()) {}
    T* get() const { return mToken.expired() ? nullptr : mObject; }
    bool refersTo(const void* object) const { return object != nullptr && object == get(); }

private:
    T* mObject = nullptr;
    std::weak_ptr<char> mToken;
};

// The display that widgets report their changes to and whose event loop delivers callbacks.
// A phone has one display; the last one constructed is the active one.
Display* activeDisplay();
// Bumps the display's revision and schedules its change listener.
void changed();
// The same without taking the library lock: for a caller that holds it already (most setters;
// taking the re-entrant lock again cost a tenth of building a form's widgets).
void changedLocked();
// Runs `task` later on the display's event loop; false (and nothing runs) without a display.
bool post(std::function<void()> task);
// Queues commandAction(command, argument) to every command listener of `source`, checked again
// for liveness when it runs.
void postCommand(Displayable* source, Command* command, Displayable* argument);
// Queues itemStateChanged(item) to every item state listener of `source`.
void postItemState(Displayable* source, Item* item);
bool hasSoftKeyBar();

// Callbacks in flight. A listener gets bare pointers to the widget and the command it is told
// about, and the application may delete both on another thread at any moment. So while a
// listener runs, the objects it was given are pinned, and the destructor of a pinned widget or
// command (on any thread but the listener's own) waits until the listener has returned.
// Consequences: a listener never waits for a thread that may be deleting widgets, and nobody
// deletes a widget or command while holding the library lock or a lock that a listener takes.
class CallbackPins {
public:
    CallbackPins() = default;
    ~CallbackPins();
    CallbackPins(const CallbackPins&) = delete;
    CallbackPins& operator=(const CallbackPins&) = delete;
    // Pins the non-null `objects`; call with the library lock held, after checking they are alive.
    void hold(std::initializer_list<const void*> objects);

private:
    std::vector<const void*> mHeld;
};
// Waits until no listener on another thread holds `object`; call without the library lock, after
// the object's life has ended (so that no new callback can pin it).
void awaitCallbacks(const void* object);
// Number of soft keys of the active display; 0 without a soft-key bar or display.
int softKeyCount();

} // namespace core
} // namespace DisplayAPI
