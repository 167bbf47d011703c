// Tables: header, rows, focus movement (including "no row") and keys.
#include "display/Table.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "display/Command.h"

namespace DisplayAPI {

Table::Table(int headerLines, int headerColumns, bool /*reserved*/) : mHeader(headerLines, headerColumns) {}

Table::~Table() {
    retire();
    std::vector<TableItem*> items;
    {
        core::Lock lock(core::mutex());
        items.swap(mItems);
        for (TableItem* item : items) {
            item->attachTo(nullptr);
        }
    }
    // Deleted without the lock: an item's destructor may wait for a listener told about it.
    for (TableItem* item : items) {
        delete item;
    }
}

void Table::setTitleColumnWidth(int column, int width) {
    core::Lock lock(core::mutex());
    if (column < 0 || column >= mHeader.columns) {
        return;
    }
    mHeaderWidths.resize(static_cast<std::size_t>(mHeader.columns), -1);
    mHeaderWidths[static_cast<std::size_t>(column)] = width;
    core::changedLocked();
}

void Table::setText(int line, int column, const std::string& text) {
    core::Lock lock(core::mutex());
    if (CellGrid::Cell* cell = mHeader.at(line, column)) {
        cell->text = text;
        core::changedLocked();
    }
}

void Table::setImage(int line, int column, int index, Image* image) {
    core::Lock lock(core::mutex());
    mHeader.setImage(line, column, index, image);
    core::changedLocked();
}

void Table::append(TableItem* item) {
    if (item == nullptr) {
        return;
    }
    core::Lock lock(core::mutex());
    if (item->table() != nullptr) {
        return;
    }
    mItems.push_back(item);
    item->attachTo(this);
    if (mFocus < 0 && mItems.size() == 1) {
        mFocus = 0;
    }
    core::changedLocked();
}

int Table::size() const {
    core::Lock lock(core::mutex());
    return static_cast<int>(mItems.size());
}

TableItem* Table::getItem(int index) const {
    core::Lock lock(core::mutex());
    return index >= 0 && index < static_cast<int>(mItems.size()) ? mItems[static_cast<std::size_t>(index)]
                                                                 : nullptr;
}

TableItem* Table::getSelected() const {
    core::Lock lock(core::mutex());
    return getItem(mFocus);
}

int Table::getSelectedIndex() const {
    core::Lock lock(core::mutex());
    return mFocus;
}

void Table::setSelectedIndex(int index) {
    core::Lock lock(core::mutex());
    if (index >= -1 && index < static_cast<int>(mItems.size())) {
        mFocus = index;
        core::changedLocked();
    }
}

void Table::reserveSpaceForContextMenuArrow() {
    core::Lock lock(core::mutex());
    mReserveArrow = true;
}

void Table::restoreFocusAndShowHighlight() {
    core::Lock lock(core::mutex());
    Displayable::restoreFocusAndShowHighlight();
}

void Table::forgetItem(TableItem* item) {
    const auto found = std::find(mItems.begin(), mItems.end(), item);
    if (found == mItems.end()) {
        return;
    }
    const int index = static_cast<int>(found - mItems.begin());
    mItems.erase(found);
    if (mFocus > index || mFocus >= static_cast<int>(mItems.size())) {
        --mFocus;
    }
    core::changed();
}

bool Table::moveFocus(int step) {
    const int count = static_cast<int>(mItems.size());
    const int next = count == 0 ? -1 : nextFocus(mFocus, step, count, [](int) { return true; });
    if (next < 0 || next == mFocus) {
        return false;
    }
    mFocus = next;
    core::changed();
    return true;
}

bool Table::onKey(Key key) {
    switch (key) {
    case Key::Up:
        if (mFocus < 0) {
            return enterTabBarFromTop();
        }
        if (mFocus == 0 && !getWrapAround()) {
            // Above the first row the table itself has the focus (its options, not a row's).
            mFocus = -1;
            core::changed();
            return true;
        }
        if (mFocus == 0 && enterTabBarFromTop()) {
            return true;
        }
        return moveFocus(-1);
    case Key::Down:
        return moveFocus(1);
    default:
        return deliverStandard(key, {{Key::Ok, Command::OK},
                                     {Key::Back, Command::BACK},
                                     {Key::Left, Command::SKIP_BACK},
                                     {Key::Right, Command::RIGHT}});
    }
}

void Table::describeContent(nlohmann::json& out) const {
    nlohmann::json header;
    mHeader.describe(header);
    header["widths"] = mHeaderWidths;
    out["header"] = header;
    out["focus"] = mFocus;
    out["reserveArrow"] = mReserveArrow;
    nlohmann::json rows = nlohmann::json::array();
    for (std::size_t i = 0; i < mItems.size(); ++i) {
        nlohmann::json row;
        mItems[i]->describe(row);
        row["focused"] = static_cast<int>(i) == mFocus;
        rows.push_back(row);
    }
    out["rows"] = rows;
}

} // namespace DisplayAPI
