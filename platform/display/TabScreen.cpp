// Tab screens: tabs, the current tab and the keys of the tab bar.
#include "display/TabScreen.h"

#include <nlohmann/json.hpp>

#include "display/Command.h"

namespace DisplayAPI {

TabScreen::TabScreen(int /*controlKey*/, int /*reserved*/) {}

TabScreen::~TabScreen() {
    retire();
}

void TabScreen::setUsedWithTab(bool used) {
    core::Lock lock(core::mutex());
    mUsedWithTab = used;
}

int TabScreen::addTab(const std::string& label, Displayable* displayable, const Image* /*icon*/) {
    core::Lock lock(core::mutex());
    mTabs.push_back(Tab{label, displayable != nullptr ? displayable->ref() : core::Ref<Displayable>()});
    if (mCurrent < 0) {
        mCurrent = 0;
    }
    core::changedLocked();
    return static_cast<int>(mTabs.size()) - 1;
}

int TabScreen::numberOfTabs() const {
    core::Lock lock(core::mutex());
    return static_cast<int>(mTabs.size());
}

int TabScreen::getCurrentTabIndex() const {
    core::Lock lock(core::mutex());
    return mCurrent;
}

void TabScreen::setCurrentTabIndex(int index) {
    core::Lock lock(core::mutex());
    if (validIndex(index)) {
        mCurrent = index;
        core::changedLocked();
    }
}

Displayable* TabScreen::getDisplayableForTabAtIndex(int index) const {
    core::Lock lock(core::mutex());
    return validIndex(index) ? mTabs[static_cast<std::size_t>(index)].displayable.get() : nullptr;
}

unsigned long TabScreen::getOwnerIdForTabAtIndex(int index) const {
    core::Lock lock(core::mutex());
    Displayable* shown =
        validIndex(index) ? mTabs[static_cast<std::size_t>(index)].displayable.get() : nullptr;
    return shown != nullptr ? shown->getOwnerId() : 0;
}

void TabScreen::setCurrentDisplayableForTabAtIndex(int index, Displayable* displayable) {
    core::Lock lock(core::mutex());
    if (validIndex(index)) {
        mTabs[static_cast<std::size_t>(index)].displayable =
            displayable != nullptr ? displayable->ref() : core::Ref<Displayable>();
        core::changedLocked();
    }
}

Displayable* TabScreen::currentTab() const {
    return getDisplayableForTabAtIndex(getCurrentTabIndex());
}

void TabScreen::removeTab(Displayable* displayable) {
    core::Lock lock(core::mutex());
    for (std::size_t i = 0; i < mTabs.size(); ++i) {
        if (mTabs[i].displayable.refersTo(displayable)) {
            removeTabAtIndex(static_cast<int>(i));
            return;
        }
    }
}

void TabScreen::removeTabAtIndex(int index) {
    core::Lock lock(core::mutex());
    if (!validIndex(index)) {
        return;
    }
    mTabs.erase(mTabs.begin() + index);
    if (mCurrent > index || mCurrent >= static_cast<int>(mTabs.size())) {
        --mCurrent;
    }
    if (mCurrent < 0 && !mTabs.empty()) {
        mCurrent = 0;
    }
    core::changedLocked();
}

void TabScreen::nextTab() {
    core::Lock lock(core::mutex());
    if (!mTabs.empty()) {
        mCurrent = (mCurrent + 1) % static_cast<int>(mTabs.size());
        core::changedLocked();
    }
}

void TabScreen::previousTab() {
    core::Lock lock(core::mutex());
    if (!mTabs.empty()) {
        const int count = static_cast<int>(mTabs.size());
        mCurrent = (mCurrent + count - 1) % count;
        core::changedLocked();
    }
}

void TabScreen::enterTabBar() {
    core::Lock lock(core::mutex());
    mBarActive = true;
    mLeftUpwards = false;
    core::changedLocked();
}

void TabScreen::leaveTabBar() {
    core::Lock lock(core::mutex());
    mBarActive = false;
    mLeftUpwards = false;
    core::changedLocked();
}

void TabScreen::leaveTabBarUpwards() {
    core::Lock lock(core::mutex());
    mBarActive = false;
    mLeftUpwards = true;
    core::changedLocked();
}

bool TabScreen::isTabBarActive() const {
    core::Lock lock(core::mutex());
    return mBarActive;
}

void TabScreen::enterTabBarFromContent(Displayable* content) {
    mBarActive = true;
    mLeftUpwards = false;
    core::postCommand(this, Command::standard(Command::TABBAR_ACTIVE), content);
    core::changed();
}

bool TabScreen::handleKey(Key key) {
    if (!mBarActive) {
        Displayable* content = currentTab();
        return content != nullptr && content->handleKey(key);
    }
    switch (key) {
    case Key::Up:
        // The application decides whether the focus leaves for the phone's own bar.
        deliver(Command::standard(Command::TABBAR_ACTIVE));
        return true;
    case Key::Left:
        deliver(Command::standard(Command::TAB_BACK));
        return true;
    case Key::Right:
        deliver(Command::standard(Command::TAB_FORWARD));
        return true;
    case Key::Down:
    case Key::Ok:
        mBarActive = false;
        deliver(Command::standard(Command::TABBAR_INACTIVE));
        core::changed();
        return true;
    default:
        return false;
    }
}

bool TabScreen::handleText(const std::string& text, bool replace) {
    Displayable* content = mBarActive ? nullptr : currentTab();
    return content != nullptr && content->handleText(text, replace);
}

std::vector<std::string> TabScreen::softKeyLabels() const {
    Displayable* content = currentTab();
    return content != nullptr && !mBarActive ? content->softKeyLabels() : Displayable::softKeyLabels();
}

void TabScreen::describeTabBar(nlohmann::json& out) const {
    nlohmann::json labels = nlohmann::json::array();
    for (const auto& tab : mTabs) {
        labels.push_back(tab.label);
    }
    out = {{"labels", labels}, {"current", mCurrent}, {"active", mBarActive}, {"leftUpwards", mLeftUpwards}};
}

void TabScreen::describeContent(nlohmann::json& out) const {
    nlohmann::json bar;
    describeTabBar(bar);
    out["tabBar"] = bar;
}

} // namespace DisplayAPI
