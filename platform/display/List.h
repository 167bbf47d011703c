// A screen of rows with one focused row; the base of exclusive and multiple lists.
#pragma once

#include <string>
#include <vector>

#include "display/Displayable.h"

class TranslationInfo;

namespace DisplayAPI {

class ListItem;
class MenuCommand;

class List : public Displayable {
public:
    // `listType` has no visible effect (plain lists are made with 1).
    explicit List(int listType = 1);
    // Deletes its rows.
    ~List() override;

    // A row with this text; returns its index.
    int append(const std::string& text);
    int append(const TranslationInfo& text);
    // The list owns the row from here on; a row already in a list is refused (-1).
    int append(ListItem* item);
    // At `index` (clamped); the focused row stays focused.
    void insert(ListItem* item, int index);
    // Deletes every row.
    void deleteAll();
    std::vector<ListItem*> getListItems() const;
    int size() const;
    // -1 when the list has no rows.
    int getSelectedIndex() const;
    void setSelectedIndex(int index);

    // Phones with a soft-key bar (exclusive and multiple lists): commands that act on the
    // focused row, offered on the soft keys after the list's own commands.
    void addItemCommand(MenuCommand* command);
    std::vector<Command*> getItemCommands() const;

    const char* kind() const override { return "list"; }
    void restoreFocusAndShowHighlight() override;

    // ---- Used by the library itself. ----
    void forgetItem(ListItem* item);

protected:
    bool onKey(Key key) override;
    std::vector<Command*> softKeyCommands() const override;
    void describeContent(nlohmann::json& out) const override;
    // Ok on the focused row.
    virtual void okPressed();
    virtual void describeRow(nlohmann::json& /*row*/, int /*index*/) const {}
    ListItem* focusedItem() const;

private:
    std::vector<ListItem*> mItems;
    int mFocus = -1;
    std::vector<core::Ref<Command>> mItemCommands;
};

} // namespace DisplayAPI
