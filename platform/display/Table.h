// A screen of rows in columns under an optional header, with one focused row or none.
#pragma once

#include <string>
#include <vector>

#include "display/Displayable.h"
#include "display/TableItem.h"

namespace DisplayAPI {

class Image;

class Table : public Displayable {
public:
    // Header lines and columns (0, 0 for none); `reserved` has no visible effect.
    Table(int headerLines, int headerColumns, bool reserved);
    // Deletes its rows.
    ~Table() override;

    void setTitleColumnWidth(int column, int width);
    void setText(int line, int column, const std::string& text);
    void setImage(int line, int column, int index, Image* image);
    // The table owns the row from here on; a row already in a table is refused.
    void append(TableItem* item);
    int size() const;
    TableItem* getItem(int index) const;
    // The focused row, or null when no row has the focus.
    TableItem* getSelected() const;
    int getSelectedIndex() const;
    // -1 takes the focus off the rows; other out-of-range indexes are ignored.
    void setSelectedIndex(int index);
    void reserveSpaceForContextMenuArrow();

    const char* kind() const override { return "table"; }
    void restoreFocusAndShowHighlight() override;

    // ---- Used by the library itself. ----
    void forgetItem(TableItem* item);

protected:
    bool onKey(Key key) override;
    void describeContent(nlohmann::json& out) const override;

private:
    bool moveFocus(int step);

    CellGrid mHeader;
    std::vector<int> mHeaderWidths;
    std::vector<TableItem*> mItems;
    int mFocus = -1;
    bool mReserveArrow = false;
};

} // namespace DisplayAPI
