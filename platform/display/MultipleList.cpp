// Multiple lists.
#include "display/MultipleList.h"

#include <nlohmann/json.hpp>

#include "display/ListItem.h"

namespace DisplayAPI {

MultipleList::MultipleList() : List(1) {}

MultipleList::~MultipleList() {
    retire();
}

void MultipleList::setSelectedFlags(const std::list<bool>& flags) {
    core::Lock lock(core::mutex());
    auto flag = flags.begin();
    for (ListItem* item : getListItems()) {
        item->ticked = flag != flags.end() && *flag;
        if (flag != flags.end()) {
            ++flag;
        }
    }
    core::changedLocked();
}

std::list<bool> MultipleList::getSelectedFlags() const {
    core::Lock lock(core::mutex());
    std::list<bool> flags;
    for (const ListItem* item : getListItems()) {
        flags.push_back(item->ticked);
    }
    return flags;
}

void MultipleList::okPressed() {
    if (ListItem* item = focusedItem()) {
        item->ticked = !item->ticked;
        core::changed();
    }
}

void MultipleList::describeRow(nlohmann::json& row, int index) const {
    const auto items = getListItems();
    row["ticked"] = items[static_cast<std::size_t>(index)]->ticked;
}

} // namespace DisplayAPI
