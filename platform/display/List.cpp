// Lists: rows, focus movement and the keys of a plain list.
#include "display/List.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "display/Command.h"
#include "display/Image.h"
#include "display/ListItem.h"
#include "display/MenuCommand.h"

namespace DisplayAPI {

List::List(int /*listType*/) {}

List::~List() {
    retire();
    deleteAll();
}

int List::append(const std::string& text) {
    auto* item = new ListItem();
    item->setText(text);
    return append(item);
}

int List::append(const TranslationInfo& text) {
    return append(new ListItem(text, false));
}

int List::append(ListItem* item) {
    if (item == nullptr) {
        return -1;
    }
    core::Lock lock(core::mutex());
    if (item->list() != nullptr) {
        return -1;
    }
    insert(item, -1);
    return static_cast<int>(mItems.size()) - 1;
}

void List::insert(ListItem* item, int index) {
    if (item == nullptr) {
        return;
    }
    core::Lock lock(core::mutex());
    if (item->list() != nullptr) {
        return;
    }
    const int count = static_cast<int>(mItems.size());
    const int at = index < 0 || index > count ? count : index;
    mItems.insert(mItems.begin() + at, item);
    item->attachTo(this);
    if (mFocus < 0) {
        mFocus = 0;
    } else if (mFocus >= at) {
        ++mFocus;
    }
    core::changedLocked();
}

void List::deleteAll() {
    std::vector<ListItem*> items;
    {
        core::Lock lock(core::mutex());
        items.swap(mItems);
        mFocus = -1;
        for (ListItem* item : items) {
            item->attachTo(nullptr);
        }
        core::changedLocked();
    }
    // Deleted without the lock: an item's destructor may wait for a listener told about it.
    for (ListItem* item : items) {
        delete item;
    }
}

std::vector<ListItem*> List::getListItems() const {
    core::Lock lock(core::mutex());
    return mItems;
}

int List::size() const {
    core::Lock lock(core::mutex());
    return static_cast<int>(mItems.size());
}

int List::getSelectedIndex() const {
    core::Lock lock(core::mutex());
    return mFocus;
}

void List::setSelectedIndex(int index) {
    core::Lock lock(core::mutex());
    if (index >= 0 && index < static_cast<int>(mItems.size())) {
        mFocus = index;
        core::changedLocked();
    }
}

void List::restoreFocusAndShowHighlight() {
    core::Lock lock(core::mutex());
    Displayable::restoreFocusAndShowHighlight();
    if (mFocus < 0 && !mItems.empty()) {
        mFocus = 0;
    }
}

void List::forgetItem(ListItem* item) {
    const auto found = std::find(mItems.begin(), mItems.end(), item);
    if (found == mItems.end()) {
        return;
    }
    const int index = static_cast<int>(found - mItems.begin());
    mItems.erase(found);
    if (mFocus > index || mFocus >= static_cast<int>(mItems.size())) {
        --mFocus;
    }
    if (mFocus < 0 && !mItems.empty()) {
        mFocus = 0;
    }
    core::changed();
}

void List::addItemCommand(MenuCommand* command) {
    if (command == nullptr) {
        return;
    }
    core::Lock lock(core::mutex());
    mItemCommands.push_back(command->ref());
    core::changedLocked();
}

std::vector<Command*> List::getItemCommands() const {
    core::Lock lock(core::mutex());
    std::vector<Command*> live;
    for (const auto& held : mItemCommands) {
        if (Command* command = held.get()) {
            live.push_back(command);
        }
    }
    return live;
}

std::vector<Command*> List::softKeyCommands() const {
    std::vector<Command*> commands = getCommands();
    for (Command* command : getItemCommands()) {
        commands.push_back(command);
    }
    return commands;
}

ListItem* List::focusedItem() const {
    return mFocus >= 0 && mFocus < static_cast<int>(mItems.size()) ? mItems[static_cast<std::size_t>(mFocus)]
                                                                   : nullptr;
}

void List::okPressed() {
    deliver(Command::standard(Command::OK));
}

bool List::onKey(Key key) {
    const int count = static_cast<int>(mItems.size());
    switch (key) {
    case Key::Up:
    case Key::Down: {
        const int step = key == Key::Up ? -1 : 1;
        if (step < 0 && mFocus <= 0 && enterTabBarFromTop()) {
            return true;
        }
        const int next = count == 0 ? -1 : nextFocus(mFocus, step, count, [](int) { return true; });
        if (next < 0 || next == mFocus) {
            return false;
        }
        mFocus = next;
        core::changed();
        return true;
    }
    case Key::Ok:
        okPressed();
        return true;
    default:
        return deliverStandard(
            key, {{Key::Back, Command::BACK}, {Key::Left, Command::SKIP_BACK}, {Key::Right, Command::RIGHT}});
    }
}

void List::describeContent(nlohmann::json& out) const {
    out["focus"] = mFocus;
    nlohmann::json rows = nlohmann::json::array();
    for (std::size_t i = 0; i < mItems.size(); ++i) {
        const ListItem* item = mItems[i];
        nlohmann::json row = {{"columns", item->columns()},
                              {"image", describeImage(item->image())},
                              {"reserveImage", item->reservesImageSpace()},
                              {"grey", !item->active()},
                              {"arrow", item->arrow()},
                              {"ownerId", item->getOwnerId()},
                              {"focused", static_cast<int>(i) == mFocus}};
        describeRow(row, static_cast<int>(i));
        rows.push_back(row);
    }
    out["rows"] = rows;
}

} // namespace DisplayAPI
