// Forms: items, focus movement and the routing of keys to the focused item.
#include "display/Form.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "display/ChoiceGroup.h"
#include "display/Command.h"
#include "display/Item.h"
#include "display/SelectionField.h"

namespace DisplayAPI {

Form::Form(FormProportionType proportion) : mProportion(proportion) {}

Form::~Form() {
    retire();
    std::vector<Item*> items;
    SelectionField* options = nullptr;
    {
        core::Lock lock(core::mutex());
        items.swap(mItems);
        options = formOptions();
        mFormOptions = core::Ref<Displayable>();
        for (Item* item : items) {
            item->attachTo(nullptr);
        }
        if (options != nullptr && std::find(items.begin(), items.end(), options) == items.end()) {
            options->attachTo(nullptr);
        } else {
            options = nullptr;
        }
    }
    // Deleted without the lock: an item's destructor may wait for a listener told about it.
    for (Item* item : items) {
        delete item;
    }
    delete options;
}

Command* Form::CURRENT_ITEM_CHANGED_COMMAND() {
    static Command* command = new Command("CURRENT_ITEM_CHANGED", Command::SCREEN);
    return command;
}

void Form::append(Item* item) {
    insertItem(item, -1);
}

void Form::appendChoiceGroup(ChoiceGroup* group) {
    append(group);
}

void Form::insertItem(Item* item, int index) {
    if (item == nullptr) {
        return;
    }
    core::Lock lock(core::mutex());
    // An item in a form's list always knows its form (it leaves the list only when it is
    // destroyed), so this also refuses an item that is here already.
    if (item->getForm() != nullptr) {
        return;
    }
    const int count = static_cast<int>(mItems.size());
    const int at = index < 0 || index > count ? count : index;
    mItems.insert(mItems.begin() + at, item);
    item->attachTo(this);
    if (mFocus >= at) {
        ++mFocus;
    }
    focusFirstIfNone();
    core::changedLocked();
}

int Form::size() const {
    core::Lock lock(core::mutex());
    return static_cast<int>(mItems.size());
}

Item* Form::getItem(int index) const {
    core::Lock lock(core::mutex());
    return index >= 0 && index < static_cast<int>(mItems.size()) ? mItems[static_cast<std::size_t>(index)]
                                                                 : nullptr;
}

Item* Form::getSelected() const {
    core::Lock lock(core::mutex());
    return getItem(mFocus);
}

void Form::setSelected(Item* item) {
    core::Lock lock(core::mutex());
    const auto found = std::find(mItems.begin(), mItems.end(), item);
    if (found == mItems.end() || !item->isFocusable()) {
        return;
    }
    if (Item* previous = getItem(mFocus); previous != nullptr && previous != item) {
        previous->focusLeaves();
    }
    mFocus = static_cast<int>(found - mItems.begin());
    item->focusArrives(1);
    core::changedLocked();
}

void Form::setFormOptions(SelectionField* options) {
    SelectionField* dropped = nullptr;
    {
        core::Lock lock(core::mutex());
        SelectionField* replaced = formOptions();
        if (options == replaced) {
            core::changedLocked();
            return;
        }
        mFormOptions = options != nullptr ? options->ref() : core::Ref<Displayable>();
        if (replaced != nullptr && std::find(mItems.begin(), mItems.end(), replaced) == mItems.end()) {
            dropped = replaced;
        }
        core::changedLocked();
    }
    delete dropped; // without the lock, see the destructor
}

SelectionField* Form::getFormOptions() const {
    core::Lock lock(core::mutex());
    return formOptions();
}

SelectionField* Form::formOptions() const {
    return static_cast<SelectionField*>(mFormOptions.get());
}

void Form::setAlternativeCommandHandling(bool /*alternative*/) {}

void Form::setCurrentLanguageFixed() {}

Form::FormProportionType Form::getProportion() const {
    core::Lock lock(core::mutex());
    return mProportion;
}

void Form::restoreFocusAndShowHighlight() {
    core::Lock lock(core::mutex());
    Displayable::restoreFocusAndShowHighlight();
    focusFirstIfNone();
}

void Form::forgetItem(Item* item) {
    const auto found = std::find(mItems.begin(), mItems.end(), item);
    if (found != mItems.end()) {
        const int index = static_cast<int>(found - mItems.begin());
        mItems.erase(found);
        if (mFocus == index) {
            mFocus = -1;
            focusFirstIfNone();
        } else if (mFocus > index) {
            --mFocus;
        }
    }
    core::changed();
}

void Form::focusFirstIfNone() {
    if (mFocus >= 0) {
        return;
    }
    for (std::size_t i = 0; i < mItems.size(); ++i) {
        if (mItems[i]->isFocusable()) {
            mFocus = static_cast<int>(i);
            mItems[i]->focusArrives(1);
            return;
        }
    }
}

bool Form::moveFocus(int step) {
    Item* focused = getItem(mFocus);
    if (focused != nullptr && focused->moveInside(step)) {
        core::changed();
        return true;
    }
    const int count = static_cast<int>(mItems.size());
    const int start = mFocus < 0 ? (step > 0 ? -1 : count) : mFocus;
    // At the top of a form under a tab bar, Up belongs to the bar rather than to wrapping.
    bool focusableAbove = false;
    for (int i = 0; i < start && i < count; ++i) {
        focusableAbove = focusableAbove || mItems[static_cast<std::size_t>(i)]->isFocusable();
    }
    if (step < 0 && !focusableAbove && enterTabBarFromTop()) {
        return true;
    }
    const int next = count == 0 ? -1 : nextFocus(start, step, count, [&](int i) {
        return mItems[static_cast<std::size_t>(i)]->isFocusable();
    });
    if (next < 0 || next == mFocus) {
        return false;
    }
    if (focused != nullptr) {
        focused->focusLeaves();
    }
    mFocus = next;
    mItems[static_cast<std::size_t>(next)]->focusArrives(step);
    deliver(CURRENT_ITEM_CHANGED_COMMAND());
    core::changed();
    return true;
}

bool Form::onKey(Key key) {
    Item* focused = getItem(mFocus);
    if (focused != nullptr && focused->isCapturingKeys() && focused->itemKey(key)) {
        core::changed();
        return true;
    }
    switch (key) {
    case Key::Up:
        return moveFocus(-1);
    case Key::Down:
        return moveFocus(1);
    case Key::Ok:
        if (focused != nullptr && focused->isInformAppOnOk()) {
            reportOk(focused);
            return true;
        }
        return focused != nullptr && focused->itemKey(key);
    case Key::Back:
        deliver(Command::standard(Command::BACK));
        return true;
    case Key::Right:
        if (focused != nullptr && focused->itemKey(key)) {
            return true;
        }
        deliver(Command::standard(Command::RIGHT));
        return true;
    default:
        return focused != nullptr && focused->itemKey(key);
    }
}

// An item that belongs to the form's own element (its options field) reports OK with the form.
// An item of another element (a selection item, a button) reports OK without a widget and with a
// command that names the form's element: the form then decides for its focused item (its default
// command, its menu, its button), which it could not tell apart from its own options field if the
// form were named as the widget.
void Form::reportOk(Item* focused) {
    if (focused->getOwnerId() == 0 || focused->getOwnerId() == getOwnerId()) {
        deliver(Command::standard(Command::OK));
        return;
    }
    if (!mItemOkCommand) {
        mItemOkCommand =
            std::make_unique<Command>(Command::standard(Command::OK)->getBasicText(), Command::OK);
    }
    mItemOkCommand->setOwnerId(getOwnerId());
    core::postCommand(this, mItemOkCommand.get(), nullptr);
}

bool Form::handleText(const std::string& text, bool replace) {
    Item* focused = getItem(mFocus);
    return focused != nullptr && focused->handleText(text, replace);
}

std::vector<Command*> Form::softKeyCommands() const {
    std::vector<Command*> commands;
    if (SelectionField* options = formOptions()) {
        commands = options->getSelections();
    }
    for (Command* command : getCommands()) {
        commands.push_back(command);
    }
    return commands;
}

void Form::describeContent(nlohmann::json& out) const {
    out["proportion"] = static_cast<int>(mProportion);
    out["focus"] = mFocus;
    nlohmann::json items = nlohmann::json::array();
    for (std::size_t i = 0; i < mItems.size(); ++i) {
        nlohmann::json item;
        mItems[i]->describe(item);
        item["focused"] = static_cast<int>(i) == mFocus;
        items.push_back(item);
    }
    out["items"] = items;
}

} // namespace DisplayAPI
