// Context menus.
#include "display/ContextMenu.h"

namespace DisplayAPI {

ContextMenu::ContextMenu(bool /*reserved*/) {}

ContextMenu::~ContextMenu() {
    retire();
}

void ContextMenu::addCommand(Command* command, Image* /*image*/, bool /*reserved*/) {
    addCommand(command);
}

} // namespace DisplayAPI
