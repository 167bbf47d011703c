// The displayable base: commands, listeners, soft keys, built-in menus and callback delivery.
#include "display/Displayable.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "display/Command.h"
#include "display/CommandListener.h"
#include "display/Item.h"
#include "display/ItemStateListener.h"
#include "display/TabScreen.h"
#include "display/Ticker.h"

namespace DisplayAPI {

namespace {

const char* const optionsLabel = "Options";

template <class T> void addOnce(std::vector<T*>& list, T* entry) {
    if (entry != nullptr && std::find(list.begin(), list.end(), entry) == list.end()) {
        list.push_back(entry);
    }
}

template <class T> void removeAll(std::vector<T*>& list, T* entry) {
    list.erase(std::remove(list.begin(), list.end(), entry), list.end());
}

} // namespace

namespace core {

void postCommand(Displayable* source, Command* command, Displayable* argument) {
    if (source == nullptr || command == nullptr) {
        return;
    }
    core::Ref<Displayable> sourceRef = source->ref();
    core::Ref<Command> commandRef = command->ref();
    core::Ref<Displayable> argumentRef = argument != nullptr ? argument->ref() : core::Ref<Displayable>();
    const bool withArgument = argument != nullptr;
    post([sourceRef, commandRef, argumentRef, withArgument] {
        std::vector<CommandListener*> listeners;
        Command* liveCommand = nullptr;
        Displayable* liveArgument = nullptr;
        CallbackPins pins;
        {
            Lock lock(mutex());
            Displayable* liveSource = sourceRef.get();
            liveCommand = commandRef.get();
            liveArgument = argumentRef.get();
            // Whatever was deleted since the key was pressed takes its command with it.
            if (liveSource == nullptr || liveCommand == nullptr ||
                (withArgument && liveArgument == nullptr)) {
                return;
            }
            listeners = liveSource->commandListeners();
            pins.hold({liveCommand, liveArgument});
        }
        for (CommandListener* listener : listeners) {
            listener->commandAction(liveCommand, liveArgument);
            listener->postCommandAction(liveCommand, liveArgument);
        }
    });
}

void postItemState(Displayable* source, Item* item) {
    if (source == nullptr || item == nullptr) {
        return;
    }
    core::Ref<Displayable> sourceRef = source->ref();
    core::Ref<Displayable> itemRef = item->ref();
    post([sourceRef, itemRef] {
        std::vector<ItemStateListener*> listeners;
        Item* liveItem = nullptr;
        CallbackPins pins;
        {
            Lock lock(mutex());
            Displayable* liveSource = sourceRef.get();
            liveItem = static_cast<Item*>(itemRef.get());
            if (liveSource == nullptr || liveItem == nullptr) {
                return;
            }
            listeners = liveSource->itemStateListeners();
            pins.hold({liveItem});
        }
        for (ItemStateListener* listener : listeners) {
            listener->itemStateChanged(liveItem);
        }
    });
}

} // namespace core

Displayable::Displayable() = default;

Displayable::~Displayable() {
    retire();
}

void Displayable::retire() {
    if (mRetired) {
        return;
    }
    mRetired = true;
    {
        core::Lock lock(core::mutex());
        if (!mLife.ended()) {
            mLife.end();
            core::changedLocked();
        }
    }
    // A listener told about this widget keeps it until it returns.
    core::awaitCallbacks(this);
}

void Displayable::setOwnerId(unsigned long id) {
    core::Lock lock(core::mutex());
    mOwnerId = id;
}

unsigned long Displayable::getOwnerId() const {
    core::Lock lock(core::mutex());
    return mOwnerId;
}

void Displayable::setTitle(const std::string& title) {
    core::Lock lock(core::mutex());
    mTitle = title;
    core::changedLocked();
}

std::string Displayable::getTitle() const {
    core::Lock lock(core::mutex());
    return mTitle;
}

void Displayable::addCommand(Command* command) {
    if (command == nullptr) {
        return;
    }
    core::Lock lock(core::mutex());
    for (const auto& held : mCommands) {
        if (held.refersTo(command)) {
            return;
        }
    }
    mCommands.push_back(command->ref());
    core::changedLocked();
}

void Displayable::removeCommand(Command* command) {
    core::Lock lock(core::mutex());
    mCommands.erase(std::remove_if(mCommands.begin(), mCommands.end(),
                                   [command](const core::Ref<Command>& held) {
                                       return held.get() == nullptr || held.get() == command;
                                   }),
                    mCommands.end());
    core::changedLocked();
}

void Displayable::clearCommands() {
    core::Lock lock(core::mutex());
    mCommands.clear();
    mMenuOpen = false;
    core::changedLocked();
}

std::vector<Command*> Displayable::getCommands() const {
    core::Lock lock(core::mutex());
    std::vector<Command*> live;
    for (const auto& held : mCommands) {
        if (Command* command = held.get()) {
            live.push_back(command);
        }
    }
    return live;
}

void Displayable::addCommandListener(CommandListener* listener) {
    core::Lock lock(core::mutex());
    addOnce(mCommandListeners, listener);
}

void Displayable::removeCommandListener(CommandListener* listener) {
    core::Lock lock(core::mutex());
    removeAll(mCommandListeners, listener);
}

void Displayable::setCommandListener(CommandListener* listener) {
    core::Lock lock(core::mutex());
    mCommandListeners.clear();
    addOnce(mCommandListeners, listener);
}

void Displayable::addItemStateListener(ItemStateListener* listener) {
    core::Lock lock(core::mutex());
    addOnce(mItemStateListeners, listener);
}

void Displayable::removeItemStateListener(ItemStateListener* listener) {
    core::Lock lock(core::mutex());
    removeAll(mItemStateListeners, listener);
}

void Displayable::setItemStateListener(ItemStateListener* listener) {
    core::Lock lock(core::mutex());
    mItemStateListeners.clear();
    addOnce(mItemStateListeners, listener);
}

void Displayable::setTicker(Ticker* ticker) {
    core::Lock lock(core::mutex());
    mTicker = ticker != nullptr ? ticker->data() : std::weak_ptr<TickerData>();
    core::changedLocked();
}

void Displayable::setUsedWithTab(bool used, TabScreen* tabScreen) {
    core::Lock lock(core::mutex());
    mUsedWithTab = used;
    mTabScreen = tabScreen != nullptr ? tabScreen->ref() : core::Ref<Displayable>();
}

void Displayable::setWrapAround(bool wrap) {
    core::Lock lock(core::mutex());
    mWrap = wrap;
}

bool Displayable::getWrapAround() const {
    core::Lock lock(core::mutex());
    return mWrap;
}

void Displayable::setSelectionHighlight(bool on) {
    core::Lock lock(core::mutex());
    mHighlight = on;
    core::changedLocked();
}

bool Displayable::getSelectionHighlight() const {
    core::Lock lock(core::mutex());
    return mHighlight;
}

void Displayable::restoreFocusAndShowHighlight() {
    core::Lock lock(core::mutex());
    mHighlight = true;
    core::changedLocked();
}

bool Displayable::isContextMenuDisplayed() const {
    core::Lock lock(core::mutex());
    return mMenuOpen;
}

void Displayable::deliver(Command* command) {
    core::postCommand(this, command, this);
}

bool Displayable::enterTabBarFromTop() {
    if (!mUsedWithTab) {
        return false;
    }
    if (auto* tabScreen = static_cast<TabScreen*>(mTabScreen.get())) {
        tabScreen->enterTabBarFromContent(this);
    } else {
        deliver(Command::standard(Command::TABBAR_ACTIVE));
    }
    return true;
}

bool Displayable::handleKey(Key key) {
    if (mMenuOpen) {
        return handleMenuKey(key);
    }
    if (const int number = softKeyNumber(key)) {
        return pressSoftKey(number);
    }
    if (key == Key::Hash && !core::hasSoftKeyBar()) {
        const auto commands = contextMenuCommands();
        if (!commands.empty()) {
            openMenu(commands);
            return true;
        }
    }
    return onKey(key);
}

bool Displayable::handleMenuKey(Key key) {
    switch (key) {
    case Key::Up:
        mMenu.move(-1, true);
        break;
    case Key::Down:
        mMenu.move(1, true);
        break;
    case Key::Ok:
        if (Command* chosen = mMenu.highlighted()) {
            deliver(chosen);
        }
        mMenuOpen = false;
        break;
    case Key::Back:
    case Key::Left:
        mMenuOpen = false;
        break;
    default:
        return false;
    }
    core::changed();
    return true;
}

void Displayable::openMenu(const std::vector<Command*>& commands) {
    mMenu.clear();
    for (Command* command : commands) {
        mMenu.add(command);
    }
    mMenuOpen = true;
    core::changed();
}

std::vector<std::string> Displayable::softKeyLabels() const {
    const int keys = core::softKeyCount();
    std::vector<std::string> labels(static_cast<std::size_t>(keys));
    const auto commands = softKeyCommands();
    const bool overflow = static_cast<int>(commands.size()) > keys;
    for (int i = 0; i < keys && i < static_cast<int>(commands.size()); ++i) {
        labels[static_cast<std::size_t>(i)] =
            overflow && i == keys - 1 ? optionsLabel : commands[static_cast<std::size_t>(i)]->getBasicText();
    }
    return labels;
}

bool Displayable::pressSoftKey(int number) {
    const int keys = core::softKeyCount();
    if (number < 1 || number > keys) {
        return false;
    }
    const auto commands = softKeyCommands();
    const int count = static_cast<int>(commands.size());
    if (number > count) {
        return false;
    }
    if (count > keys && number == keys) {
        openMenu(std::vector<Command*>(commands.begin() + (keys - 1), commands.end()));
        return true;
    }
    deliver(commands[static_cast<std::size_t>(number - 1)]);
    return true;
}

void Displayable::describe(nlohmann::json& out) const {
    out["kind"] = kind();
    out["ownerId"] = mOwnerId;
    out["title"] = mTitle;
    const auto ticker = mTicker.lock();
    out["ticker"] = ticker ? nlohmann::json(ticker->text) : nlohmann::json();
    nlohmann::json commands = nlohmann::json::array();
    for (Command* command : getCommands()) {
        commands.push_back(command->getBasicText());
    }
    out["commands"] = commands;
    out["highlight"] = mHighlight;
    if (mMenuOpen) {
        nlohmann::json entries = nlohmann::json::array();
        for (Command* command : mMenu.entries()) {
            entries.push_back(command->getBasicText());
        }
        out["menu"] = {{"entries", entries}, {"focus", mMenu.highlight()}};
    } else {
        out["menu"] = nullptr;
    }
    describeContent(out);
}

bool Displayable::deliverStandard(Key key, std::initializer_list<KeyCommand> table) {
    for (const KeyCommand& entry : table) {
        if (entry.key == key) {
            deliver(Command::standard(entry.type));
            return true;
        }
    }
    return false;
}

} // namespace DisplayAPI
