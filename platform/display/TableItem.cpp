// Table rows and their cells.
#include "display/TableItem.h"

#include <nlohmann/json.hpp>

#include "display/Core.h"
#include "display/Image.h"
#include "display/Table.h"

namespace DisplayAPI {

namespace {

// Far more than a row of a phone's table can show; keeps bad input from growing memory.
constexpr int maximumImagesPerCell = 16;
constexpr int maximumCells = 1000;

int bounded(int count) {
    return count < 0 ? 0 : count;
}

} // namespace

CellGrid::CellGrid(int lineCount, int columnCount)
    : lines(bounded(lineCount)), columns(bounded(columnCount)) {
    if (lines * static_cast<long>(columns) > maximumCells) {
        lines = 0;
        columns = 0;
    }
    cells.resize(static_cast<std::size_t>(lines * columns));
}

CellGrid::Cell* CellGrid::at(int line, int column) {
    if (line < 0 || line >= lines || column < 0 || column >= columns) {
        return nullptr;
    }
    return &cells[static_cast<std::size_t>(line * columns + column)];
}

void CellGrid::setImage(int line, int column, int index, Image* image) {
    Cell* cell = at(line, column);
    if (cell == nullptr || index < 0 || index >= maximumImagesPerCell) {
        return;
    }
    if (cell->images.size() <= static_cast<std::size_t>(index)) {
        cell->images.resize(static_cast<std::size_t>(index) + 1);
    }
    cell->images[static_cast<std::size_t>(index)] = image != nullptr ? image->data() : nullptr;
}

void CellGrid::describe(nlohmann::json& out) const {
    nlohmann::json lineList = nlohmann::json::array();
    for (int line = 0; line < lines; ++line) {
        nlohmann::json cellList = nlohmann::json::array();
        for (int column = 0; column < columns; ++column) {
            const Cell& cell = cells[static_cast<std::size_t>(line * columns + column)];
            nlohmann::json images = nlohmann::json::array();
            for (const auto& image : cell.images) {
                images.push_back(describeImage(image));
            }
            cellList.push_back({{"text", cell.text}, {"grey", !cell.active}, {"images", images}});
        }
        lineList.push_back(cellList);
    }
    out["lines"] = lineList;
}

TableItem::TableItem(int lines, int columns) : mCells(lines, columns) {}

TableItem::~TableItem() {
    core::Lock lock(core::mutex());
    if (mTable != nullptr) {
        mTable->forgetItem(this);
    }
}

void TableItem::setText(int line, int column, const std::string& text) {
    core::Lock lock(core::mutex());
    if (CellGrid::Cell* cell = mCells.at(line, column)) {
        cell->text = text;
        core::changedLocked();
    }
}

std::string TableItem::getText(int line, int column) const {
    core::Lock lock(core::mutex());
    const CellGrid::Cell* cell = const_cast<CellGrid&>(mCells).at(line, column);
    return cell != nullptr ? cell->text : std::string();
}

void TableItem::setImage(int line, int column, int index, Image* image) {
    core::Lock lock(core::mutex());
    mCells.setImage(line, column, index, image);
    core::changedLocked();
}

void TableItem::setActiveFontColour(int line, int column, bool active) {
    core::Lock lock(core::mutex());
    if (CellGrid::Cell* cell = mCells.at(line, column)) {
        cell->active = active;
        core::changedLocked();
    }
}

void TableItem::enableContextMenuArrow(bool shown) {
    core::Lock lock(core::mutex());
    mArrow = shown;
    core::changedLocked();
}

void TableItem::setColumnWidthPercent(int column, int percent) {
    core::Lock lock(core::mutex());
    if (column < 0 || column >= mCells.columns || percent < 0 || percent > 100) {
        return;
    }
    mWidths.resize(static_cast<std::size_t>(mCells.columns), -1);
    mWidths[static_cast<std::size_t>(column)] = percent;
    core::changedLocked();
}

void TableItem::reserveSpaceForContextMenuArrow() {
    core::Lock lock(core::mutex());
    mReserveArrow = true;
}

void TableItem::setOwnerId(unsigned long id) {
    core::Lock lock(core::mutex());
    mOwnerId = id;
}

unsigned long TableItem::getOwnerId() const {
    core::Lock lock(core::mutex());
    return mOwnerId;
}

void TableItem::describe(nlohmann::json& out) const {
    mCells.describe(out);
    out["widths"] = mWidths;
    out["arrow"] = mArrow;
    out["reserveArrow"] = mReserveArrow;
    out["ownerId"] = mOwnerId;
}

} // namespace DisplayAPI
