// A row of a table: its cells, its key/value pair and its commands with their context menu.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "AGPCommonBase.h"
#include "AGPIppCommand.h"
#include "AGPKeyValueProviderIfc.h"

class AGPKey;
class AGPValue;

namespace DisplayAPI {
class ContextMenu;
class Image;
class TableItem;
} // namespace DisplayAPI

// Lives and dies with its document tree on its queue's thread. Its table item belongs to the
// table widget once appended (the row then only forgets it); its context menu is its own.
class AGPRow : public AGPCommonBase, public AGPKeyValueProviderIfc {
public:
    AGPRow();
    AGPRow(const AGPRow&) = delete;
    AGPRow& operator=(const AGPRow&) = delete;
    ~AGPRow() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_Row; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return mCellCount.isCountValid() && mIppCommandCount.isCountValid(); }
    void initializeElement() override;
    void processElement() override;
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override;
    void reDisplayElement2ndRound() override;

    // The row's pair, whatever its texts ("null" and "" when not given).
    void gatherKeyValues(std::multimap<std::string, std::string>& keyValues) override;

    void setText(int line, std::string& text, unsigned long cellId, bool active);
    void setImage(int line, int index, DisplayAPI::Image* image, unsigned long cellId);
    // A command of the screen shown on every row: it goes first in the row's menu.
    void setCommandElement(AGPIppCommand& command);
    // The row's own commands shown as `displayOn`, appended to `out`.
    void findAndAddCommandsDisplayedOn(std::vector<AGPIppCommand*>& out,
                                       AGPIppCommand::AGPDisplayOn displayOn);
    void removeDuplicitCommands() { AGPIppCommand::removeDuplicitCommands(mItemCommands); }
    // The first item command marked Default or Select, or null.
    AGPIppCommand* getDefaultIppCommand();
    // The item command whose menu entry is `command`, or null.
    AGPIppCommand* getSelectedIppCommand(DisplayAPI::Command* command);
    bool hasCommands() const { return !mItemCommands.empty(); }
    bool hasBack() const { return mHasBack; }
    bool isContextMenuDisplayed() const { return mContextMenuDisplayed; }
    void pushRequestIndication() { mContextMenuDisplayed = false; }
    void createAndPostDismissContextMenuMessage();
    void createAndInitDisplayElements();
    void createAndInitDisplayElements2ndRound();
    void deleteDisplayElements();

    DisplayAPI::TableItem* getTableItem() const { return mTableItem; }
    const std::vector<int>& getColumnWidths() const { return mColumnWidths; }
    std::uint32_t getAGPLineCount() const { return mLineCount; }
    std::uint32_t getAGPCommandCount() const { return mCommandCount; }
    AGPKey* getAGPKey() const { return mKey; }
    AGPValue* getAGPValue() const { return mValue; }

private:
    class AGPIppTable* table();
    void post(AGPMessage::MessageType type, const std::string& content, AGPId target,
              DisplayAPI::Command* command, bool bringToFront);

    std::int32_t mCellMaximum;
    AGPChildCount mCellCount;
    AGPChildCount mIppCommandCount;
    std::uint32_t mCommandCount;
    std::uint32_t mLineCount;
    AGPKey* mKey;
    bool mKeyGiven;
    AGPValue* mValue;
    bool mValueGiven;
    bool mContextMenuDisplayed;
    std::int32_t mTableCommandCount;
    DisplayAPI::TableItem* mTableItem;
    std::vector<int> mColumnWidths;
    DisplayAPI::ContextMenu* mContextMenu;
    std::vector<AGPIppCommand*> mItemCommands;
    bool mHasBack;
    AGPObjectType mParentType;
};
