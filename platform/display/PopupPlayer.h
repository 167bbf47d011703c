// A popup media player: state, mode, a progress bar and keys that stand for its buttons.
#pragma once

#include "display/Displayable.h"

namespace DisplayAPI {

// 0 playing (progress follows the application), 1 not set, 2 stopped (progress not driven),
// 3 stopped at the end or after Cancel, 4 recording (progress follows the application).
enum PopupPlayerState {
    PLAYER_PLAYING = 0,
    PLAYER_UNSET = 1,
    PLAYER_STOPPED = 2,
    PLAYER_FINISHED = 3,
    PLAYER_RECORDING = 4,
};

enum PopupPlayerMode {
    PLAYER_MODE_CALL = 0,
    PLAYER_MODE_RECORD = 1,
};

class PopupPlayer : public Displayable {
public:
    PopupPlayer();
    ~PopupPlayer() override;

    void setState(PopupPlayerState state, PopupPlayerMode mode);
    PopupPlayerState getState() const;
    PopupPlayerMode getMode() const;
    void setProgressBarMinValue(int value);
    void setProgressBarMaxValue(int value);
    void setProgressBarStep(int step);
    // Kept inside the minimum and maximum.
    void setProgressBarValue(int value);
    int getProgressBarValue() const;

    // OK-type commands of the player's buttons, told apart by identity. Never deleted.
    static Command* CONFIRM();
    static Command* PLAY();
    static Command* RECORD();

    const char* kind() const override { return "player"; }
    bool isPopup() const override { return true; }

protected:
    bool onKey(Key key) override;
    void describeContent(nlohmann::json& out) const override;

private:
    PopupPlayerState mState = PLAYER_UNSET;
    PopupPlayerMode mMode = PLAYER_MODE_CALL;
    int mMin = 0;
    int mMax = 100;
    int mStep = 1;
    int mValue = 0;
};

} // namespace DisplayAPI
