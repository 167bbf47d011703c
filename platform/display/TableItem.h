// One row of a table: a grid of cells, each with a text line and pictures, and column widths.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace DisplayAPI {

class Image;
class Table;
struct ImageData;

// Cells of a row or of a table's header. Positions outside the grid are ignored.
struct CellGrid {
    struct Cell {
        std::string text;
        bool active = true;
        std::vector<std::shared_ptr<const ImageData>> images;
    };

    CellGrid(int lines, int columns);
    Cell* at(int line, int column);
    void setImage(int line, int column, int index, Image* image);
    void describe(nlohmann::json& out) const;

    int lines;
    int columns;
    std::vector<Cell> cells;
};

class TableItem {
public:
    // Lines per row (1 or 2) and columns; negative counts give an empty row.
    TableItem(int lines, int columns);
    // Takes the row out of its table.
    ~TableItem();
    TableItem(const TableItem&) = delete;
    TableItem& operator=(const TableItem&) = delete;

    void setText(int line, int column, const std::string& text);
    std::string getText(int line, int column) const;
    // Pictures of a cell line, by position (up to 16); the picture's content is shared.
    void setImage(int line, int column, int index, Image* image);
    // false shows the cell's text in grey.
    void setActiveFontColour(int line, int column, bool active);
    void enableContextMenuArrow(bool shown);
    // 0..100; other values are ignored.
    void setColumnWidthPercent(int column, int percent);
    void reserveSpaceForContextMenuArrow();
    void setOwnerId(unsigned long id);
    unsigned long getOwnerId() const;

    // ---- Used by the library itself; callers hold the library lock. ----
    void attachTo(Table* table) { mTable = table; }
    Table* table() const { return mTable; }
    void describe(nlohmann::json& out) const;

private:
    CellGrid mCells;
    std::vector<int> mWidths;
    bool mArrow = false;
    bool mReserveArrow = false;
    unsigned long mOwnerId = 0;
    Table* mTable = nullptr;
};

} // namespace DisplayAPI
