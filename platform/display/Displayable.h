// The base of everything the display shows: screens, popups and form items.
#pragma once

#include <initializer_list>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "display/Command.h"
#include "display/Core.h"
#include "display/Input.h"
#include "display/MenuModel.h"

namespace DisplayAPI {

class Command;
class CommandListener;
class ItemStateListener;
class TabScreen;
class Ticker;
struct TickerData;

// Every operation is safe to call from any thread. Commands, listeners, tickers and tab screens
// given to a displayable are not owned by it; deleting a command or ticker removes it from every
// displayable, and deleting a displayable takes it off the display and out of its tab.
// Lifetime: the application deletes a displayable on any thread; the delete waits while a
// listener on another thread is being told about it (core::CallbackPins), so a listener may use
// the pointers it is given until it returns, and never after.
class Displayable {
public:
    virtual ~Displayable();
    Displayable(const Displayable&) = delete;
    Displayable& operator=(const Displayable&) = delete;

    // The application's word for this widget (0 = none); callbacks give the widget back with it.
    void setOwnerId(unsigned long id);
    unsigned long getOwnerId() const;
    void setTitle(const std::string& title);
    std::string getTitle() const;

    // Commands offered on the widget: on soft keys, or in its built-in context menu on a phone
    // without soft-key bar. Menus (context menu, popup confirm) take them as entries instead.
    virtual void addCommand(Command* command);
    void removeCommand(Command* command);
    void clearCommands();
    std::vector<Command*> getCommands() const;

    void addCommandListener(CommandListener* listener);
    void removeCommandListener(CommandListener* listener);
    // Replaces every command listener by `listener` (none for null).
    void setCommandListener(CommandListener* listener);
    void addItemStateListener(ItemStateListener* listener);
    void removeItemStateListener(ItemStateListener* listener);
    void setItemStateListener(ItemStateListener* listener);

    // Screen behaviour shared by forms, lists, tables and text boxes.
    void setTicker(Ticker* ticker);
    // Marks the widget as shown under a tab bar: Up from its top enters the bar of `tabScreen`,
    // or reports TABBAR_ACTIVE with the widget itself when `tabScreen` is null (the phone's bar).
    void setUsedWithTab(bool used, TabScreen* tabScreen = nullptr);
    void setWrapAround(bool wrap);
    bool getWrapAround() const;
    // Shows or hides the focus highlight (off while the focus is in a tab bar).
    void setSelectionHighlight(bool on);
    bool getSelectionHighlight() const;
    virtual void restoreFocusAndShowHighlight();
    // Whether the widget's own menu (built-in context menu or soft-key options) is open.
    bool isContextMenuDisplayed() const;

    // "form", "list", "exclusiveList", ... as used in snapshots.
    virtual const char* kind() const = 0;
    // Alerts, popup confirms, context menus and players are shown over the current screen.
    virtual bool isPopup() const { return false; }

    // ---- Used by the library itself; callers hold the library lock. ----
    core::Ref<Displayable> ref() {
        core::Lock lock(core::mutex()); // another thread may be ending the life right now
        return core::Ref<Displayable>(this, mLife);
    }
    std::vector<CommandListener*> commandListeners() const { return mCommandListeners; }
    std::vector<ItemStateListener*> itemStateListeners() const { return mItemStateListeners; }
    // A key for this widget; true when it had an effect.
    virtual bool handleKey(Key key);
    // Text typed into the widget's focused field (emptied first with `replace`); true when that had an
    // effect.
    virtual bool handleText(const std::string& /*text*/, bool /*replace*/) { return false; }
    // Labels of the soft keys (empty strings for free keys); none without a soft-key bar.
    virtual std::vector<std::string> softKeyLabels() const;
    // What a person sees of this widget, as plain data (see Snapshot.cpp for the shape).
    virtual void describe(nlohmann::json& out) const;

protected:
    Displayable();
    // Detaches the widget from everything that refers to it; the first thing every destructor
    // of a concrete class does, so no other thread can reach a half-destroyed widget.
    void retire();

    virtual bool onKey(Key /*key*/) { return false; }
    virtual std::vector<Command*> softKeyCommands() const { return getCommands(); }
    virtual std::vector<Command*> contextMenuCommands() const { return getCommands(); }
    virtual void describeContent(nlohmann::json& out) const = 0;

    // Queues commandAction(command, this) to this widget's listeners.
    void deliver(Command* command);
    // The keys that stand for one of the library's own commands on a widget.
    struct KeyCommand {
        Key key;
        Command::Type type;
    };
    // Delivers the library's command for `key` when `table` names one; false otherwise.
    bool deliverStandard(Key key, std::initializer_list<KeyCommand> table);
    // Up at the top of the widget: enters the tab bar when the widget is marked for one.
    bool enterTabBarFromTop();
    bool isUsedWithTab() const { return mUsedWithTab; }
    // The next focus index from `current` by `step` over `count` entries, skipping those that
    // `canFocus` refuses; -1 when there is none in that direction.
    template <class CanFocus> int nextFocus(int current, int step, int count, CanFocus canFocus) const {
        for (int i = 1; i <= count; ++i) {
            int index = current + step * i;
            if (mWrap) {
                index = ((index % count) + count) % count;
            } else if (index < 0 || index >= count) {
                return -1;
            }
            if (canFocus(index)) {
                return index;
            }
        }
        return -1;
    }

private:
    bool handleMenuKey(Key key);
    bool pressSoftKey(int number);
    void openMenu(const std::vector<Command*>& commands);

    unsigned long mOwnerId = 0;
    std::string mTitle;
    std::vector<core::Ref<Command>> mCommands;
    std::vector<CommandListener*> mCommandListeners;
    std::vector<ItemStateListener*> mItemStateListeners;
    std::weak_ptr<TickerData> mTicker;
    bool mUsedWithTab = false;
    core::Ref<Displayable> mTabScreen;
    bool mWrap = true;
    bool mHighlight = true;
    MenuModel mMenu;
    bool mMenuOpen = false;
    core::Lifetime mLife;
    // Set by the first retire(), in the most derived destructor; the base destructors' calls,
    // on the same thread, then have nothing left to do.
    bool mRetired = false;
};

} // namespace DisplayAPI
