// A popup that asks what Back should do: go back, cancel, exit.
#pragma once

#include "display/MenuScreen.h"

namespace DisplayAPI {

class PopupConfirm : public MenuScreen {
public:
    // `reserved` has no visible effect.
    explicit PopupConfirm(bool reserved = true);
    ~PopupConfirm() override;

    // Kept and shown in snapshots; no other effect.
    void setState(int state);
    int getState() const;

    const char* kind() const override { return "popupConfirm"; }

protected:
    void describeContent(nlohmann::json& out) const override;

private:
    int mState = 0;
};

} // namespace DisplayAPI
