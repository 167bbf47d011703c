// Popup menus: highlight, choice and closing keys.
#include "display/MenuScreen.h"

#include <nlohmann/json.hpp>

#include "display/Command.h"

namespace DisplayAPI {

MenuScreen::~MenuScreen() {
    retire();
}

void MenuScreen::addCommand(Command* command) {
    core::Lock lock(core::mutex());
    mEntries.add(command);
    core::changedLocked();
}

void MenuScreen::removeEntry(Command* command) {
    core::Lock lock(core::mutex());
    mEntries.remove(command);
    core::changedLocked();
}

int MenuScreen::size() const {
    core::Lock lock(core::mutex());
    return mEntries.size();
}

int MenuScreen::getSelectedIndex() const {
    core::Lock lock(core::mutex());
    return mEntries.highlight();
}

void MenuScreen::setSelectedIndex(int index) {
    core::Lock lock(core::mutex());
    mEntries.setHighlight(index);
    core::changedLocked();
}

Command* MenuScreen::getSelectedCommand() const {
    core::Lock lock(core::mutex());
    return mEntries.highlighted();
}

std::vector<Command*> MenuScreen::getEntries() const {
    core::Lock lock(core::mutex());
    return mEntries.entries();
}

bool MenuScreen::onKey(Key key) {
    switch (key) {
    case Key::Up:
    case Key::Down:
        mEntries.move(key == Key::Up ? -1 : 1, true);
        core::changed();
        return true;
    case Key::Ok:
        if (Command* chosen = mEntries.highlighted()) {
            deliver(chosen);
            return true;
        }
        return false;
    default:
        return deliverStandard(key, {{Key::Back, Command::BACK}, {Key::Left, Command::SKIP_BACK}});
    }
}

void MenuScreen::describeContent(nlohmann::json& out) const {
    nlohmann::json entries = nlohmann::json::array();
    for (Command* command : mEntries.entries()) {
        entries.push_back(command->getBasicText());
    }
    out["entries"] = entries;
    out["focus"] = mEntries.highlight();
}

} // namespace DisplayAPI
