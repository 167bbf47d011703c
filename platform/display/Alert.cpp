// Alerts: Ok gives the highlighted command, Back the first, so any alert can be dismissed.
#include "display/Alert.h"

#include <nlohmann/json.hpp>

#include "display/Command.h"
#include "display/Image.h"

namespace DisplayAPI {

Alert::Alert(const std::string& title, const std::string& text, Image* image, AlertType type)
    : mText(text), mImage(image != nullptr ? image->data() : nullptr), mType(type) {
    setTitle(title);
}

Alert::~Alert() {
    retire();
}

void Alert::setText(const std::string& text) {
    core::Lock lock(core::mutex());
    mText = text;
    core::changedLocked();
}

std::string Alert::getText() const {
    core::Lock lock(core::mutex());
    return mText;
}

void Alert::setImage(Image* image) {
    core::Lock lock(core::mutex());
    mImage = image != nullptr ? image->data() : nullptr;
    core::changedLocked();
}

void Alert::setType(AlertType type) {
    core::Lock lock(core::mutex());
    mType = type;
    core::changedLocked();
}

AlertType Alert::getType() const {
    core::Lock lock(core::mutex());
    return mType;
}

bool Alert::onKey(Key key) {
    const auto commands = getCommands();
    const int count = static_cast<int>(commands.size());
    if (count == 0) {
        return false;
    }
    const int focus = mFocus < count ? mFocus : count - 1;
    switch (key) {
    case Key::Up:
    case Key::Down:
        mFocus = (focus + (key == Key::Up ? count - 1 : 1)) % count;
        core::changed();
        return true;
    case Key::Ok:
        deliver(commands[static_cast<std::size_t>(focus)]);
        return true;
    case Key::Back:
        deliver(commands.front());
        return true;
    default:
        return false;
    }
}

void Alert::describeContent(nlohmann::json& out) const {
    out["text"] = mText;
    out["alertType"] = static_cast<int>(mType);
    out["image"] = describeImage(mImage);
    const int count = static_cast<int>(getCommands().size());
    out["focus"] = count == 0 ? -1 : (mFocus < count ? mFocus : count - 1);
}

} // namespace DisplayAPI
