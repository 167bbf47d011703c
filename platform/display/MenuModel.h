// Entries and highlight of a menu: context menus, popup confirms, alerts and built-in menus.
#pragma once

#include <vector>

#include "display/Core.h"

namespace DisplayAPI {

class Command;

// Holds its commands weakly: a deleted command simply disappears from the menu. Used with the
// library lock held.
class MenuModel {
public:
    void add(Command* command);
    void remove(const Command* command);
    void clear();
    // The live entries, in the order added.
    std::vector<Command*> entries() const;
    int size() const { return static_cast<int>(entries().size()); }
    // Index of the highlighted entry among the live ones, -1 for none.
    int highlight() const;
    void setHighlight(int index);
    Command* highlighted() const;
    void move(int step, bool wrap);

private:
    std::vector<core::Ref<Command>> mEntries;
    int mHighlight = -1;
};

} // namespace DisplayAPI
