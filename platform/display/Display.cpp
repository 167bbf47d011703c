// The display: current screen and popup, the active display and change notices.
#include "display/Display.h"

#include "display/Displayable.h"
#include "display/TabScreen.h"
#include "events/EventLoop.h"

namespace DisplayAPI {

namespace {

Display* gActiveDisplay = nullptr;

} // namespace

namespace core {

Mutex& mutex() {
    // Never destroyed: widgets made by static objects may still lock it during exit.
    static Mutex* libraryMutex = new Mutex();
    return *libraryMutex;
}

Display* activeDisplay() {
    Lock lock(mutex());
    return gActiveDisplay;
}

void changed() {
    Lock lock(mutex());
    changedLocked();
}

void changedLocked() {
    if (gActiveDisplay != nullptr) {
        gActiveDisplay->noteChange();
    }
}

bool post(std::function<void()> task) {
    Lock lock(mutex());
    return gActiveDisplay != nullptr && gActiveDisplay->eventLoop().post(std::move(task)) != 0;
}

bool hasSoftKeyBar() {
    Lock lock(mutex());
    return gActiveDisplay != nullptr && gActiveDisplay->hasSoftKeyBar() == 1;
}

int softKeyCount() {
    Lock lock(mutex());
    if (gActiveDisplay == nullptr || !gActiveDisplay->model().softKeyBar) {
        return 0;
    }
    const int keys = gActiveDisplay->model().softKeys;
    return keys < 1 ? 1 : (keys > 6 ? 6 : keys);
}

} // namespace core

Display::Display(EventLoop& loop, const DisplayModel& model) : mLoop(loop), mModel(model) {
    core::Lock lock(core::mutex());
    gActiveDisplay = this;
}

Display::~Display() {
    core::Lock lock(core::mutex());
    if (gActiveDisplay == this) {
        gActiveDisplay = nullptr;
    }
    mLife.end();
}

void Display::show() {
    core::Lock lock(core::mutex());
    if (!mShown) {
        mShown = true;
        noteChange();
    }
}

void Display::hide() {
    core::Lock lock(core::mutex());
    if (mShown) {
        mShown = false;
        noteChange();
    }
}

bool Display::isShown() const {
    core::Lock lock(core::mutex());
    return mShown;
}

void Display::setCurrent(Displayable* displayable) {
    core::Lock lock(core::mutex());
    if (displayable == nullptr) {
        mBlank = true;
        mPopup = core::Ref<Displayable>();
    } else if (displayable->isPopup()) {
        mBlank = false;
        mPopup = displayable->ref();
    } else {
        mBlank = false;
        mScreen = displayable->ref();
        mPopup = core::Ref<Displayable>();
    }
    noteChange();
}

Displayable* Display::screen() const {
    return mBlank ? nullptr : mScreen.get();
}

Displayable* Display::popup() const {
    return mBlank ? nullptr : mPopup.get();
}

Displayable* Display::getCurrent() const {
    core::Lock lock(core::mutex());
    Displayable* shownPopup = popup();
    return shownPopup != nullptr ? shownPopup : screen();
}

unsigned long Display::getCurrentOwnerId() const {
    core::Lock lock(core::mutex());
    Displayable* shownPopup = popup();
    Displayable* shown = shownPopup != nullptr ? shownPopup : screen();
    return shown != nullptr ? shown->getOwnerId() : 0;
}

int Display::hasSoftKeyBar() const {
    return mModel.softKeyBar ? 1 : 0;
}

bool Display::isCurrentForKeyEvents(Displayable* displayable) const {
    core::Lock lock(core::mutex());
    Displayable* current = getCurrent();
    if (displayable == nullptr || current == nullptr) {
        return false;
    }
    if (current == displayable) {
        return true;
    }
    auto* tabScreen = dynamic_cast<TabScreen*>(current);
    return tabScreen != nullptr && !tabScreen->isTabBarActive() && tabScreen->currentTab() == displayable;
}

void Display::setKeypadEventSending(bool on) {
    core::Lock lock(core::mutex());
    mKeypadSending = on;
    noteChange();
}

bool Display::isKeypadEventSending() const {
    core::Lock lock(core::mutex());
    return mKeypadSending;
}

void Display::setKeypadObserver(std::function<void(int)> observer) {
    core::Lock lock(core::mutex());
    mKeypadObserver = std::move(observer);
}

void Display::setChangeListener(std::function<void()> listener) {
    core::Lock lock(core::mutex());
    mChangeListener = std::move(listener);
}

void Display::noteChange() {
    ++mRevision;
    if (!mChangeListener || mChangeNoticePending) {
        return;
    }
    mChangeNoticePending = true;
    const core::Ref<Display> self(this, mLife);
    mLoop.post([self] {
        std::function<void()> listener;
        {
            core::Lock lock(core::mutex());
            Display* display = self.get();
            if (display == nullptr) {
                return;
            }
            display->mChangeNoticePending = false;
            listener = display->mChangeListener;
        }
        if (listener) {
            listener();
        }
    });
}

void Display::waitUntilSettled() {
    // Callbacks may change widgets, which queues more work; a few rounds reach the quiet state.
    for (int round = 0; round < 8; ++round) {
        const std::uint64_t before = revision();
        mLoop.drain();
        if (revision() == before) {
            mLoop.drain();
            return;
        }
    }
}

} // namespace DisplayAPI
