// Form items: the common part.
#include "display/Item.h"

#include <nlohmann/json.hpp>

#include "display/Form.h"

namespace DisplayAPI {

Item::Item() = default;

Item::~Item() {
    retire();
    core::Lock lock(core::mutex());
    if (mForm != nullptr) {
        mForm->forgetItem(this);
    }
}

void Item::setLabel(const std::string& label) {
    core::Lock lock(core::mutex());
    mLabel = label;
    mTranslatedLabel.reset();
    core::changedLocked();
}

void Item::setLabel(const TranslationInfo& label) {
    core::Lock lock(core::mutex());
    mTranslatedLabel = label;
    core::changedLocked();
}

std::string Item::getLabel() const {
    core::Lock lock(core::mutex());
    return mTranslatedLabel ? mTranslatedLabel->getText() : mLabel;
}

void Item::setInformAppOnOk(bool inform) {
    core::Lock lock(core::mutex());
    mInformAppOnOk = inform;
}

bool Item::isInformAppOnOk() const {
    core::Lock lock(core::mutex());
    return mInformAppOnOk;
}

void Item::setSelectable(bool selectable) {
    core::Lock lock(core::mutex());
    mSelectable = selectable;
    core::changedLocked();
}

bool Item::isSelectable() const {
    core::Lock lock(core::mutex());
    return mSelectable;
}

Form* Item::getForm() const {
    core::Lock lock(core::mutex());
    return mForm;
}

void Item::notifyStateChanged() {
    if (mForm != nullptr) {
        core::postItemState(mForm, this);
    }
}

void Item::describe(nlohmann::json& out) const {
    out["kind"] = kind();
    out["ownerId"] = getOwnerId();
    out["label"] = getLabel();
    out["focusable"] = isFocusable();
    describeContent(out);
}

} // namespace DisplayAPI
