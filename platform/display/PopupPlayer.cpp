// The popup player.
#include "display/PopupPlayer.h"

#include <nlohmann/json.hpp>

#include "display/Command.h"

namespace DisplayAPI {

PopupPlayer::PopupPlayer() = default;

PopupPlayer::~PopupPlayer() {
    retire();
}

Command* PopupPlayer::CONFIRM() {
    static Command* command = new Command("Confirm", Command::OK);
    return command;
}

Command* PopupPlayer::PLAY() {
    static Command* command = new Command("Play", Command::OK);
    return command;
}

Command* PopupPlayer::RECORD() {
    static Command* command = new Command("Record", Command::OK);
    return command;
}

void PopupPlayer::setState(PopupPlayerState state, PopupPlayerMode mode) {
    core::Lock lock(core::mutex());
    mState = state;
    mMode = mode;
    core::changedLocked();
}

PopupPlayerState PopupPlayer::getState() const {
    core::Lock lock(core::mutex());
    return mState;
}

PopupPlayerMode PopupPlayer::getMode() const {
    core::Lock lock(core::mutex());
    return mMode;
}

void PopupPlayer::setProgressBarMinValue(int value) {
    core::Lock lock(core::mutex());
    mMin = value;
    core::changedLocked();
}

void PopupPlayer::setProgressBarMaxValue(int value) {
    core::Lock lock(core::mutex());
    mMax = value;
    core::changedLocked();
}

void PopupPlayer::setProgressBarStep(int step) {
    core::Lock lock(core::mutex());
    mStep = step;
}

void PopupPlayer::setProgressBarValue(int value) {
    core::Lock lock(core::mutex());
    mValue = mMin <= mMax ? (value < mMin ? mMin : (value > mMax ? mMax : value)) : value;
    core::changedLocked();
}

int PopupPlayer::getProgressBarValue() const {
    core::Lock lock(core::mutex());
    return mValue;
}

bool PopupPlayer::onKey(Key key) {
    Command* command = nullptr;
    switch (key) {
    case Key::Ok:
        if (mState == PLAYER_PLAYING || mState == PLAYER_RECORDING) {
            command = Command::standard(Command::PAUSE);
        } else {
            command = mMode == PLAYER_MODE_RECORD ? RECORD() : PLAY();
        }
        break;
    case Key::Back:
        command = Command::standard(Command::CANCEL);
        break;
    case Key::Left:
        command = Command::standard(Command::BACK);
        break;
    case Key::Right:
        command = Command::standard(Command::RIGHT);
        break;
    case Key::Up:
        command = Command::standard(Command::SKIP_BACK);
        break;
    case Key::Down:
        command = Command::standard(Command::SKIP_RIGHT);
        break;
    case Key::Digit5:
        command = Command::standard(Command::STOP);
        break;
    case Key::Digit0:
        command = Command::standard(Command::SCREEN);
        break;
    case Key::Star:
        command = Command::standard(Command::DELETE);
        break;
    case Key::Hash:
        command = CONFIRM();
        break;
    default:
        return false;
    }
    deliver(command);
    return true;
}

void PopupPlayer::describeContent(nlohmann::json& out) const {
    out["state"] = static_cast<int>(mState);
    out["mode"] = static_cast<int>(mMode);
    out["progress"] = {{"min", mMin}, {"max", mMax}, {"step", mStep}, {"value", mValue}};
}

} // namespace DisplayAPI
