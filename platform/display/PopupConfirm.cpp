// Popup confirms.
#include "display/PopupConfirm.h"

#include <nlohmann/json.hpp>

namespace DisplayAPI {

PopupConfirm::PopupConfirm(bool /*reserved*/) {}

PopupConfirm::~PopupConfirm() {
    retire();
}

void PopupConfirm::setState(int state) {
    core::Lock lock(core::mutex());
    mState = state;
}

int PopupConfirm::getState() const {
    core::Lock lock(core::mutex());
    return mState;
}

void PopupConfirm::describeContent(nlohmann::json& out) const {
    MenuScreen::describeContent(out);
    out["state"] = mState;
}

} // namespace DisplayAPI
