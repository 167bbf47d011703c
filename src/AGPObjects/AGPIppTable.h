// The full-screen table: rows of cells in columns under an optional header, with row menus.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "AGPDisplayable.h"

class AGPRow;

namespace DisplayAPI {
class ContextMenu;
class Image;
class PopupConfirm;
class Table;
} // namespace DisplayAPI

// Lives and dies with its document tree on its queue's thread. It owns the table widget (which
// owns the rows' items), the options menu and the popup confirm; the commands belong to the tree.
class AGPIppTable : public AGPDisplayable {
public:
    enum AGPSelectable : std::int32_t { SELECTABLE_NO = 0 };

    AGPIppTable();
    AGPIppTable(const AGPIppTable&) = delete;
    AGPIppTable& operator=(const AGPIppTable&) = delete;
    ~AGPIppTable() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppTable; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return mUrlCount.isCountValid(); }
    void initializeElement() override;
    void processElement() override;
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override;
    void reDisplayElement2ndRound() override;

    DisplayAPI::Displayable* getDisplayAPIDisplayable() override;
    void setCommandElement(AGPIppCommand& command) override;
    void setHighlight(bool on) override;
    void restoreFocusAndHighlight() override;
    bool isContextMenuDisplayed() override;
    bool isPopupMenuDisplayed() override { return mPopupMenuDisplayed; }
    void pushRequestIndication() override;
    void processNotifyEvent(AGPIppCommand::AGPEvent event) override;
    bool hasBack() override { return mHasBack; }

    // Forwarded to the widget; nothing while it does not exist.
    void setTitleColumnWidth(int column, int width);
    void setText(int line, int column, std::string& text);
    void setImage(int line, int column, int index, DisplayAPI::Image* image);
    // Some row has item commands: every row reserves room for the menu arrow.
    void setContextSpace() { mContextSpace = true; }
    // The focused row's pair; nothing without a focused row.
    void gatherKeyValues(std::multimap<std::string, std::string>& keyValues);
    AGPIppCommand* getDefaultIppCommand();
    // The option command whose menu entry is `command`, or null.
    AGPIppCommand* getSelectedIppCommand(DisplayAPI::Command* command);
    void handleBackCommand(DisplayAPI::Command* command, bool bringToFront);
    // The rows' own commands shown as `displayOn` (DISPLAYON_DEFAULT also takes BOTH).
    void findAndAddCommandsDisplayedOn(std::vector<AGPIppCommand*>& out,
                                       AGPIppCommand::AGPDisplayOn displayOn);
    void addOptionComamnds();
    void addPopupCommands();
    void initContextMenuOptions();
    void initPopupConfirm();
    void createAndInitDisplayElements();
    void createAndInitDisplayElements2ndRound();
    void deleteDisplayElements();
    void saveTableState();
    void retrieveTableState();

    std::uint32_t getAGPColumnCount() const { return mColumnCount; }
    AGPSelectable getAGPSelectable() const { return mSelectable; }
    const std::vector<int>& getColumnWidths() const { return mColumnWidths; }
    // A whole number of 0 or more, else 1.
    static std::uint32_t parseAGPColumnCount(const std::string& text);

protected:
    void addSelectedPairs(std::multimap<std::string, std::string>& keyValues) override {
        gatherKeyValues(keyValues);
    }

private:
    std::vector<AGPRow*> getRows();
    // The row whose item has the focus, or null.
    AGPRow* focusedRow();
    void showTable(AGPMessage::MessageType type, bool bringToFront);
    void showMenu(DisplayAPI::Displayable* menu, AGPMessage::MessageType type, bool bringToFront);
    void send(AGPIppCommand* command, std::multimap<std::string, std::string>& keyValues,
              AGPMessage::MessageType type, bool bringToFront);
    void resetMenuState();
    void destroyWidgets();

    AGPChildCount mUrlCount;
    AGPChildCount mHeaderCount;
    AGPChildCount mRowCount;
    AGPChildCount mOptionCount;
    std::uint32_t mColumnCount;
    AGPSelectable mSelectable;
    DisplayAPI::Table* mTable;
    std::vector<int> mColumnWidths;
    bool mPopupMenuDisplayed;
    bool mHasBack;
    bool mContextSpace;
    DisplayAPI::ContextMenu* mOptionsContextMenu;
    bool mContextMenuDisplayed;
    DisplayAPI::PopupConfirm* mPopupConfirm;
    std::int32_t mSavedFocus;
    std::vector<AGPIppCommand*> mOptionCommands;
    std::vector<AGPIppCommand*> mPopupCommands;
};
