// The common part of context menus and popup confirms: a popup list of commands to choose from.
#pragma once

#include "display/Displayable.h"
#include "display/MenuModel.h"

namespace DisplayAPI {

// Entries are commands (usually MenuCommands), not owned. Choosing one delivers it with the
// menu as the widget; the application closes the menu by making another widget current.
class MenuScreen : public Displayable {
public:
    ~MenuScreen() override;

    // Adds an entry (not a soft key).
    void addCommand(Command* command) override;
    void removeEntry(Command* command);
    int size() const;
    // The highlighted entry; -1 when there is none.
    int getSelectedIndex() const;
    void setSelectedIndex(int index);
    Command* getSelectedCommand() const;
    std::vector<Command*> getEntries() const;

    bool isPopup() const override { return true; }

protected:
    MenuScreen() = default;
    bool onKey(Key key) override;
    std::vector<Command*> softKeyCommands() const override { return {}; }
    std::vector<Command*> contextMenuCommands() const override { return {}; }
    void describeContent(nlohmann::json& out) const override;

private:
    MenuModel mEntries;
};

} // namespace DisplayAPI
