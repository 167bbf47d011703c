// Choice groups: rows walked with Up and Down inside the form, toggled with Ok.
#include "display/ChoiceGroup.h"

#include <nlohmann/json.hpp>

#include "display/Image.h"

namespace DisplayAPI {

ChoiceGroup::ChoiceGroup(const std::string& label, ChoiceGroupType type) : mType(type) {
    setLabel(label);
}

ChoiceGroup::~ChoiceGroup() {
    retire();
}

int ChoiceGroup::append(const std::string& text, Image* image) {
    core::Lock lock(core::mutex());
    mChoices.push_back(Choice{text, image != nullptr ? image->data() : nullptr, false});
    core::changedLocked();
    return static_cast<int>(mChoices.size()) - 1;
}

void ChoiceGroup::setImage(int index, Image* image) {
    core::Lock lock(core::mutex());
    if (index < 0 || index >= static_cast<int>(mChoices.size())) {
        return;
    }
    mChoices[index].image = image != nullptr ? image->data() : nullptr;
    core::changedLocked();
}

void ChoiceGroup::setSelectedIndex(int index, bool selected) {
    core::Lock lock(core::mutex());
    if (index < 0 || index >= static_cast<int>(mChoices.size())) {
        return;
    }
    if (mType == EXCLUSIVE && selected) {
        for (auto& choice : mChoices) {
            choice.selected = false;
        }
    }
    mChoices[static_cast<std::size_t>(index)].selected = selected;
    core::changedLocked();
}

int ChoiceGroup::size() const {
    core::Lock lock(core::mutex());
    return static_cast<int>(mChoices.size());
}

bool ChoiceGroup::isSelected(int index) const {
    core::Lock lock(core::mutex());
    return index >= 0 && index < static_cast<int>(mChoices.size()) &&
           mChoices[static_cast<std::size_t>(index)].selected;
}

int ChoiceGroup::getSelectedIndex() const {
    core::Lock lock(core::mutex());
    for (std::size_t i = 0; i < mChoices.size(); ++i) {
        if (mChoices[i].selected) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

ChoiceGroup::ChoiceGroupType ChoiceGroup::getType() const {
    core::Lock lock(core::mutex());
    return mType;
}

bool ChoiceGroup::isFocusable() const {
    return Item::isFocusable() && !mChoices.empty();
}

bool ChoiceGroup::itemKey(Key key) {
    if (key != Key::Ok || mChoices.empty()) {
        return false;
    }
    const int row = mRow < static_cast<int>(mChoices.size()) ? mRow : 0;
    setSelectedIndex(row, mType == EXCLUSIVE ? true : !isSelected(row));
    notifyStateChanged();
    return true;
}

bool ChoiceGroup::moveInside(int step) {
    const int next = mRow + step;
    if (next < 0 || next >= static_cast<int>(mChoices.size())) {
        return false;
    }
    mRow = next;
    return true;
}

void ChoiceGroup::focusArrives(int step) {
    mRow = step < 0 && !mChoices.empty() ? static_cast<int>(mChoices.size()) - 1 : 0;
}

void ChoiceGroup::describeContent(nlohmann::json& out) const {
    out["choiceType"] = mType == EXCLUSIVE ? "exclusive" : "multiple";
    out["row"] = mRow;
    nlohmann::json choices = nlohmann::json::array();
    for (const auto& choice : mChoices) {
        choices.push_back(
            {{"text", choice.text}, {"selected", choice.selected}, {"image", describeImage(choice.image)}});
    }
    out["choices"] = choices;
}

} // namespace DisplayAPI
