// A screen of tabs: a bar of labels and the widget of the current tab underneath.
#pragma once

#include <string>
#include <vector>

#include "display/Displayable.h"

namespace DisplayAPI {

class Image;

// Tabs hold their widgets without owning them; a deleted widget leaves its tab empty. While the
// focus is in the bar, Left and Right report TAB_BACK and TAB_FORWARD with the tab screen to its
// listeners (the application switches with previousTab and nextTab), and Down or Ok leaves the
// bar reporting TABBAR_INACTIVE.
class TabScreen : public Displayable {
public:
    // `controlKey` and `reserved` have no visible effect.
    TabScreen(int controlKey, int reserved);
    ~TabScreen() override;

    // The screen is itself shown inside the phone's own tab bar; kept, no visible effect.
    void setUsedWithTab(bool used);
    // `icon` may be null and has no visible effect. Returns the new tab's index.
    int addTab(const std::string& label, Displayable* displayable, const Image* icon);
    int numberOfTabs() const;
    int getCurrentTabIndex() const;
    void setCurrentTabIndex(int index);
    Displayable* getDisplayableForTabAtIndex(int index) const;
    // The owner identifier of that widget (0 for none), read in one step, for threads that may
    // not keep the widget itself.
    unsigned long getOwnerIdForTabAtIndex(int index) const;
    void setCurrentDisplayableForTabAtIndex(int index, Displayable* displayable);
    // The widget of the current tab, or null.
    Displayable* currentTab() const;
    // Removes the first tab showing `displayable`.
    void removeTab(Displayable* displayable);
    // Tabs above move down by one.
    void removeTabAtIndex(int index);
    // Wrap around at the ends.
    void nextTab();
    void previousTab();
    // Moves the focus into the bar, out of it (to the tab's widget), or up out of the application.
    void enterTabBar();
    void leaveTabBar();
    void leaveTabBarUpwards();
    bool isTabBarActive() const;

    const char* kind() const override { return "tabScreen"; }

    // ---- Used by the library itself; callers hold the library lock. ----
    // Up from the top of a tab's widget: the bar takes the focus and TABBAR_ACTIVE is reported.
    // The focus moved up from `content` into the bar: reported with that widget, so that the
    // application can tell it from a report with the tab screen itself, which asks to leave the
    // bar upwards into the phone's own bar (Up while the bar has the focus).
    void enterTabBarFromContent(Displayable* content);
    bool handleKey(Key key) override;
    bool handleText(const std::string& text, bool replace) override;
    std::vector<std::string> softKeyLabels() const override;
    void describeTabBar(nlohmann::json& out) const;

protected:
    void describeContent(nlohmann::json& out) const override;

private:
    struct Tab {
        std::string label;
        core::Ref<Displayable> displayable;
    };

    bool validIndex(int index) const { return index >= 0 && index < static_cast<int>(mTabs.size()); }

    std::vector<Tab> mTabs;
    int mCurrent = -1;
    bool mBarActive = false;
    bool mLeftUpwards = false;
    bool mUsedWithTab = false;
};

} // namespace DisplayAPI
