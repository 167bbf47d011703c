// Selection fields: browsing, the popup of entries and the choice.
#include "display/SelectionField.h"

#include <nlohmann/json.hpp>

#include "display/MenuCommand.h"
#include "text/TranslationInfo.h"

namespace DisplayAPI {

SelectionField::SelectionField(const TranslationInfo* label, MenuCommand* selectionCommand, Form* /*form*/,
                               bool /*reserved*/) {
    if (label != nullptr) {
        setLabel(*label);
    }
    if (selectionCommand != nullptr) {
        mSelectionCommand = selectionCommand->ref();
    }
}

SelectionField::~SelectionField() {
    retire();
}

void SelectionField::appendSelection(MenuCommand* command) {
    core::Lock lock(core::mutex());
    mEntries.add(command);
    if (mSelection < 0 && mEntries.size() > 0) {
        mSelection = 0;
    }
    core::changedLocked();
}

void SelectionField::clearSelections() {
    core::Lock lock(core::mutex());
    mEntries.clear();
    mSelection = -1;
    mPopupOpen = false;
    core::changedLocked();
}

std::vector<Command*> SelectionField::getSelections() const {
    core::Lock lock(core::mutex());
    return mEntries.entries();
}

int SelectionField::getSelectionIndex() const {
    core::Lock lock(core::mutex());
    const int count = mEntries.size();
    if (count == 0) {
        return -1;
    }
    return mSelection >= count ? count - 1 : mSelection;
}

void SelectionField::setSelectionIndex(int index) {
    core::Lock lock(core::mutex());
    if (index >= 0 && index < mEntries.size()) {
        mSelection = index;
        core::changedLocked();
    }
}

Command* SelectionField::getSelectionCommand() const {
    core::Lock lock(core::mutex());
    const auto entries = mEntries.entries();
    const int index = getSelectionIndex();
    return index < 0 ? mSelectionCommand.get() : entries[static_cast<std::size_t>(index)];
}

void SelectionField::setContextMenuSuppressed() {
    core::Lock lock(core::mutex());
    mSuppressed = true;
}

bool SelectionField::isPopupOpen() const {
    core::Lock lock(core::mutex());
    return mPopupOpen;
}

void SelectionField::choose(int index) {
    const bool changed = index != getSelectionIndex();
    setSelectionIndex(index);
    // The options field reports on Ok instead; browsing it must not look like a choice.
    if (changed && !isInformAppOnOk()) {
        notifyStateChanged();
    }
}

bool SelectionField::itemKey(Key key) {
    if (mPopupOpen) {
        switch (key) {
        case Key::Up:
            mPopup.move(-1, true);
            return true;
        case Key::Down:
            mPopup.move(1, true);
            return true;
        case Key::Ok:
            mPopupOpen = false;
            choose(mPopup.highlight());
            return true;
        default:
            mPopupOpen = key == Key::Back || key == Key::Left ? false : mPopupOpen;
            return true;
        }
    }
    const int count = mEntries.size();
    switch (key) {
    case Key::Left:
    case Key::Right:
        if (count > 0) {
            const int step = key == Key::Left ? -1 : 1;
            const int next = getSelectionIndex() + step;
            choose(next < 0 ? count - 1 : (next >= count ? 0 : next));
        }
        return true;
    case Key::Ok:
        if (mSuppressed || count == 0) {
            return false;
        }
        mPopup = mEntries;
        mPopup.setHighlight(getSelectionIndex());
        mPopupOpen = true;
        return true;
    default:
        return false;
    }
}

void SelectionField::describeContent(nlohmann::json& out) const {
    nlohmann::json entries = nlohmann::json::array();
    for (Command* command : mEntries.entries()) {
        entries.push_back(command->getBasicText());
    }
    const int index = getSelectionIndex();
    out["entries"] = entries;
    out["selected"] = index;
    out["value"] = index >= 0 ? entries[static_cast<std::size_t>(index)] : nlohmann::json("");
    out["popup"] = mPopupOpen ? nlohmann::json{{"focus", mPopup.highlight()}} : nlohmann::json();
}

} // namespace DisplayAPI
