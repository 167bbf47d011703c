// A group of options in a form: radio buttons, check boxes or a popup selection.
#include "AGPIppChoiceGroup.h"

#include <algorithm>
#include <string_view>

#include "AGPIppForm.h"
#include "AGPKey.h"
#include "AGPOption.h"
#include "AGPUtils.h"
#include "AGPValue.h"
#include "display/ChoiceGroup.h"
#include "display/MenuCommand.h"
#include "display/SelectionField.h"

using namespace std::string_view_literals;

namespace {

// The identifier that a popup entry's menu command carries.
constexpr int kPopupEntryId = 23;

bool isTicked(const AGPOption* option) {
    return option->getAGPSelected() == AGPOption::SELECTED_TRUE;
}

} // namespace

AGPIppChoiceGroup::AGPIppChoiceGroup()
    : mLabelCount(0, 1), mOptionCount(0, -1), mNumbered(NUMBERED_NO), mType(EXCLUSIVE), mCount(0),
      mChoiceGroup(nullptr), mSelectionField(nullptr) {
    registerElement();
}

AGPIppChoiceGroup::~AGPIppChoiceGroup() {
    unregisterElement();
    releaseWidgets();
    for (DisplayAPI::MenuCommand* entry : mPopupEntries) {
        delete entry;
    }
}

bool AGPIppChoiceGroup::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Label:
        return addCountedChild(mLabelCount, child);
    case AGPObjectTypeInfo::ti_Option:
        return addCountedChild(mOptionCount, child);
    default:
        return false;
    }
}

bool AGPIppChoiceGroup::addAttribute(std::string& name, std::string& value) {
    if (name == "Type"sv) {
        mType = parseAGPType(value);
        return true;
    }
    if (name == "Count"sv) {
        mCount = parseAGPCount(value);
        return true;
    }
    if (name == "Numbered"sv) {
        mNumbered = parseAGPNumbered(value);
        return true;
    }
    return false;
}

AGPIppChoiceGroup::AGPType AGPIppChoiceGroup::parseAGPType(const std::string& text) {
    return text == "MULTIPLE" ? MULTIPLE : text == "POPUP" ? POPUP : EXCLUSIVE;
}

std::uint32_t AGPIppChoiceGroup::parseAGPCount(const std::string& text) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        return 0;
    }
    return static_cast<std::uint32_t>(number);
}

AGPIppChoiceGroup::AGPNumbered AGPIppChoiceGroup::parseAGPNumbered(const std::string& text) {
    return text == "NO" ? NUMBERED_NO : NUMBERED_YES;
}

std::vector<AGPOption*> AGPIppChoiceGroup::options() {
    std::vector<AGPOption*> out;
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == AGPObjectTypeInfo::ti_Option) {
            out.push_back(static_cast<AGPOption*>(child));
        }
    }
    return out;
}

std::size_t AGPIppChoiceGroup::shownCount(std::size_t optionCount) const {
    return std::min<std::size_t>(mCount, optionCount);
}

std::string AGPIppChoiceGroup::label() {
    AGPCommonBase* child = getChildByType(AGPObjectTypeInfo::ti_Label);
    return child != nullptr ? child->getContent() : std::string("ChoiceGroup");
}

// Widgets in a form go with the form widget.
void AGPIppChoiceGroup::releaseWidgets() {
    if (mChoiceGroup != nullptr && mChoiceGroup->getForm() == nullptr) {
        delete mChoiceGroup;
    }
    mChoiceGroup = nullptr;
    if (mSelectionField != nullptr && mSelectionField->getForm() == nullptr) {
        delete mSelectionField;
    }
    mSelectionField = nullptr;
}

// From the document the options' own "Selected" ticks; on a redisplay the ticks saved at hiding
// come back in the second round instead, so an entry the user unticked stays unticked.
void AGPIppChoiceGroup::createAndInitDisplayElements(bool fromDocument) {
    releaseWidgets();
    const std::vector<AGPOption*> all = options();
    const std::size_t shown = shownCount(all.size());
    if (mType == POPUP) {
        if (fromDocument && mPopupEntries.empty()) {
            for (std::size_t i = 0; i < shown; ++i) {
                mPopupEntries.push_back(new DisplayAPI::MenuCommand(
                    all[i]->getOptionText(), all[i]->getDisplayAPIImage(), kPopupEntryId));
            }
        }
        return;
    }
    mChoiceGroup = new DisplayAPI::ChoiceGroup(
        label(), mType == MULTIPLE ? DisplayAPI::ChoiceGroup::MULTIPLE : DisplayAPI::ChoiceGroup::EXCLUSIVE);
    mChoiceGroup->setOwnerId(mAGPId);
    for (std::size_t i = 0; i < shown; ++i) {
        const int index = mChoiceGroup->append(all[i]->getOptionText(), all[i]->getDisplayAPIImage());
        mChoiceGroup->setSelectedIndex(index, fromDocument && isTicked(all[i]));
    }
}

void AGPIppChoiceGroup::setOptionPicture(AGPOption* option, DisplayAPI::Image* picture) {
    if (mChoiceGroup == nullptr) {
        return;
    }
    const std::vector<AGPOption*> all = options();
    const std::size_t shown = shownCount(all.size());
    for (std::size_t i = 0; i < shown; ++i) {
        if (all[i] == option) {
            mChoiceGroup->setImage(static_cast<int>(i), picture);
            return;
        }
    }
}

// The selection field of a popup group needs the form widget, which exists only now.
void AGPIppChoiceGroup::createAndInitDisplayElements2ndRound() {
    if (mType != POPUP) {
        return;
    }
    if (mSelectionField != nullptr && mSelectionField->getForm() == nullptr) {
        delete mSelectionField;
    }
    mSelectionField = nullptr;
    if (mPopupEntries.empty()) {
        return;
    }
    AGPCommonBase* owner = mParent;
    if (owner != nullptr && owner->getAGPObjectType() == AGPObjectTypeInfo::ti_IppItem) {
        owner = owner->getParent();
    }
    DisplayAPI::Form* form = owner != nullptr && owner->getAGPObjectType() == AGPObjectTypeInfo::ti_IppForm
                                 ? static_cast<AGPIppForm*>(owner)->getForm()
                                 : nullptr;
    mSelectionField = new DisplayAPI::SelectionField(nullptr, mPopupEntries.front(), form, true);
    mSelectionField->setLabel(label());
    mSelectionField->setOwnerId(mAGPId);
    for (DisplayAPI::MenuCommand* entry : mPopupEntries) {
        mSelectionField->appendSelection(entry);
    }
    const std::vector<AGPOption*> all = options();
    const std::size_t shown = shownCount(all.size());
    for (std::size_t i = 0; i < shown; ++i) {
        if (isTicked(all[i])) {
            if (i != 0) {
                mSelectionField->setSelectionIndex(static_cast<int>(i));
            }
            break;
        }
    }
}

void AGPIppChoiceGroup::reDisplayElement2ndRound() {
    createAndInitDisplayElements2ndRound();
    for (int index : mSavedSelection) {
        if (mType == POPUP && mSelectionField != nullptr) {
            mSelectionField->setSelectionIndex(index);
        } else if (mChoiceGroup != nullptr) {
            mChoiceGroup->setSelectedIndex(index, true);
        }
    }
    mSavedSelection.clear();
}

void AGPIppChoiceGroup::hideElement() {
    mSavedSelection.clear();
    getSelIdxs(mSavedSelection);
    releaseWidgets();
}

void AGPIppChoiceGroup::getSelIdxs(std::vector<int>& out) {
    int index = -1;
    if (mType == POPUP) {
        index = mSelectionField != nullptr ? mSelectionField->getSelectionIndex() : -1;
    } else if (mChoiceGroup != nullptr && mType == MULTIPLE) {
        const int size = mChoiceGroup->size();
        for (int i = 0; i < size; ++i) {
            if (mChoiceGroup->isSelected(i)) {
                out.push_back(i);
            }
        }
        return;
    } else if (mChoiceGroup != nullptr) {
        index = mChoiceGroup->getSelectedIndex();
    }
    if (index >= 0) {
        out.push_back(index);
    }
}

DisplayAPI::Item* AGPIppChoiceGroup::getDisplayItem() {
    if (mType == POPUP) {
        return mSelectionField;
    }
    return mChoiceGroup;
}

void AGPIppChoiceGroup::performCancel() {
    const std::vector<AGPOption*> all = options();
    if (mType == POPUP) {
        if (mSelectionField == nullptr) {
            return;
        }
        int chosen = 0;
        for (std::size_t i = 0; i < all.size() && i < mPopupEntries.size(); ++i) {
            if (isTicked(all[i])) {
                chosen = static_cast<int>(i);
                break;
            }
        }
        mSelectionField->setSelectionIndex(chosen);
        return;
    }
    if (mChoiceGroup == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < all.size(); ++i) {
        mChoiceGroup->setSelectedIndex(static_cast<int>(i), isTicked(all[i]));
    }
}

// Check boxes send every shown option: ticked ones with their value, the others with "not_"
// before it. Radio buttons and popups send the chosen option only.
void AGPIppChoiceGroup::gatherKeyValues(std::multimap<std::string, std::string>& keyValues) {
    const std::vector<AGPOption*> all = options();
    auto pairOf = [&](std::size_t index, const std::string& prefix) {
        if (index < all.size()) {
            keyValues.emplace(all[index]->getAGPKey()->getValueText(),
                              prefix + all[index]->getAGPValue()->getValueText());
        }
    };
    if (mType == MULTIPLE) {
        if (mChoiceGroup == nullptr) {
            return;
        }
        const int size = mChoiceGroup->size();
        for (int i = 0; i < size; ++i) {
            pairOf(static_cast<std::size_t>(i), mChoiceGroup->isSelected(i) ? "" : "not_");
        }
        return;
    }
    std::vector<int> chosen;
    getSelIdxs(chosen);
    for (int index : chosen) {
        pairOf(static_cast<std::size_t>(index), "");
    }
}
