// The phone's display: the current screen and popup, keys in, snapshots and change notices out.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "display/Core.h"
#include "display/Input.h"

class EventLoop;

namespace DisplayAPI {

class Displayable;

// What kind of phone the display belongs to; chosen by the platform's configuration.
struct DisplayModel {
    std::string name = "desk phone";
    bool softKeyBar = true;
    int softKeys = 4; // 1..6; ignored without a soft-key bar
    int width = 320;
    int height = 240;
    int visibleLines = 6;
};

// Made by the host with the platform's event loop, which delivers every callback of the library
// (commands, item changes, timer expiries, keypad digits, change notices). The host keeps the
// loop alive longer than the display. The last display constructed is the one widgets report to.
class Display {
public:
    Display(EventLoop& loop, const DisplayModel& model);
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    // Brings the application's display to the screen or takes it off; both idempotent. Keys are
    // ignored while it is hidden.
    void show();
    void hide();
    bool isShown() const;

    // A full screen replaces the screen and closes any popup; a popup (alert, popup confirm,
    // context menu, player) is shown over the screen, which stays visible underneath. Null shows
    // nothing until the next setCurrent, but a popup set next still appears over the last screen.
    // The display never owns what it shows; a deleted displayable is taken off.
    void setCurrent(Displayable* displayable);
    // The popup if one is up, else the screen (possibly a TabScreen), else null.
    Displayable* getCurrent() const;
    // The owner identifier of what getCurrent() gives (0 for none), read in one step: another
    // thread may delete that widget as soon as getCurrent() returns.
    unsigned long getCurrentOwnerId() const;
    // 1 with a soft-key bar, 0 without.
    int hasSoftKeyBar() const;
    // Whether `displayable` gets the keys now: current and not covered by a popup; inside a tab
    // screen, the current tab's widget while the bar does not have the focus.
    bool isCurrentForKeyEvents(Displayable* displayable) const;
    // On (the default), digits nobody used are the host's idle dialling; off, they go to the
    // keypad observer.
    void setKeypadEventSending(bool on);
    bool isKeypadEventSending() const;
    // Receives keypad codes (see Input.h) on the event thread.
    void setKeypadObserver(std::function<void(int code)> observer);

    // The host's input: a key of the phone, or text typed into the focused field. True when the
    // key or text had an effect. See Input.h for what each key does.
    bool pressKey(Key key);
    // With `replace`, the field is emptied first.
    bool typeText(const std::string& text, bool replace = false);

    // What a person sees now, as plain data (shape described in Snapshot.cpp).
    nlohmann::json snapshot() const;
    // Bumped by every visible change.
    std::uint64_t revision() const { return mRevision.load(); }
    // Called on the event thread after changes, at most once per batch of changes.
    void setChangeListener(std::function<void()> listener);
    // Waits until the event loop has run everything the library queued so far (callbacks and
    // what they queued in turn). Returns at once on the event thread itself.
    void waitUntilSettled();

    const DisplayModel& model() const { return mModel; }
    EventLoop& eventLoop() const { return mLoop; }

    // ---- Used by the library itself; callers hold the library lock. ----
    void noteChange();

private:
    Displayable* screen() const;
    Displayable* popup() const;

    EventLoop& mLoop;
    const DisplayModel mModel;
    bool mShown = false;
    bool mBlank = false;
    core::Ref<Displayable> mScreen;
    core::Ref<Displayable> mPopup;
    bool mKeypadSending = true;
    std::function<void(int)> mKeypadObserver;
    std::function<void()> mChangeListener;
    bool mChangeNoticePending = false;
    std::atomic<std::uint64_t> mRevision{0};
    core::Lifetime mLife;
};

} // namespace DisplayAPI
