// A popup menu of commands for a list row, a table, a form item or a list's options.
#pragma once

#include "display/MenuScreen.h"

namespace DisplayAPI {

class Image;

class ContextMenu : public MenuScreen {
public:
    // `reserved` has no visible effect.
    explicit ContextMenu(bool reserved = true);
    ~ContextMenu() override;

    using MenuScreen::addCommand;
    // `image` and `reserved` have no visible effect.
    void addCommand(Command* command, Image* image, bool reserved);

    const char* kind() const override { return "contextMenu"; }
};

} // namespace DisplayAPI
