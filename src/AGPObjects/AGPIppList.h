// The full-screen list of options: plain, exclusive or multiple, with its menus and requests.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "AGPDisplayable.h"

class AGPFColor;
class AGPOption;
class AGPSFColor;
class AGPSTColor;
class AGPTColor;

namespace DisplayAPI {
class ContextMenu;
class List;
class PopupConfirm;
} // namespace DisplayAPI

class AGPIppList : public AGPDisplayable {
public:
    enum AGPNumbered : std::int32_t { NUMBERED_NO = 0, NUMBERED_YES = 1 };
    enum AGPType : std::int32_t { PLAIN = 0, EXCLUSIVE = 1, MULTIPLE = 2 };
    enum AGPColumns : std::int32_t { COLUMNS_1 = 0, COLUMNS_3 = 1 };

    AGPIppList();
    AGPIppList(const AGPIppList&) = delete;
    AGPIppList& operator=(const AGPIppList&) = delete;
    ~AGPIppList() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppList; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return isValidContainer(); }
    void initializeElement() override;
    // Builds the menus once the screen has handed over its commands.
    void processElement() override;
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override;
    void reDisplayElement2ndRound() override;

    DisplayAPI::Displayable* getDisplayAPIDisplayable() override;
    void setCommandElement(AGPIppCommand& command) override;
    void setTickerElement(AGPIppTicker& ticker) override;
    void setHighlight(bool on) override;
    void restoreFocusAndHighlight() override;
    bool isContextMenuDisplayed() override;
    bool isPopupMenuDisplayed() override { return mPopupMenuDisplayed; }
    void pushRequestIndication() override;
    void processNotifyEvent(AGPIppCommand::AGPEvent event) override;
    bool hasBack() override { return false; }

    bool isValidContainer() {
        return isCountValidAGPTitle() && isCountValidAGPUrl() && isCountValidAGPOption();
    }
    bool isCountValidAGPTitle() { return mTitleCount.isCountValid(); }
    bool isCountValidAGPUrl() { return mUrlCount.isCountValid(); }
    bool isCountValidAGPOption() { return mOptionCount.isCountValid(); }

    AGPNumbered getAGPNumbered() const { return mNumbered; }
    void setAGPNumbered(AGPNumbered numbered) { mNumbered = numbered; }
    AGPType getAGPType() const { return mType; }
    void setAGPType(AGPType type) { mType = type; }
    std::uint32_t getAGPCount() const { return mCount; }
    void setAGPCount(std::uint32_t count) { mCount = count; }
    AGPColumns getAGPColumns() const { return mColumns; }
    void setAGPColumns(AGPColumns columns) { mColumns = columns; }
    AGPFColor* getAGPFColor() const { return mFColor; }
    AGPTColor* getAGPTColor() const { return mTColor; }
    AGPSFColor* getAGPSFColor() const { return mSFColor; }
    AGPSTColor* getAGPSTColor() const { return mSTColor; }
    bool isOptionsEntryInserted() const { return mOptionsEntryInserted; }

    static AGPType parseAGPType(const std::string& text);
    static std::uint32_t parseAGPCount(const std::string& text);
    static AGPColumns parseAGPColumns(const std::string& text);
    static AGPNumbered parseAGPNumbered(const std::string& text);

    // The Url child, or null.
    AGPCommonBase* getUrl() { return getChildByType(AGPObjectTypeInfo::ti_Url); }

    void createAndInitDisplayElements();
    void deleteDisplayElements();
    void initContextMenuOptions();
    void initContextMenuItems();
    void initPopupConfirm();
    void addOptionComamnds();
    void addItemCommands();
    void addPopupCommands();
    AGPIppCommand* getSelectedIppCommand(DisplayAPI::Command* command);
    void handleBackCommand(DisplayAPI::Command* command, bool bringToFront);
    // Focus and ticks as the document gives them.
    void performCancel();
    // Adds the pairs of what the user chose.
    void selectItem(std::multimap<std::string, std::string>& keyValues);
    void saveListState();
    void retrieveListState();

protected:
    void addSelectedPairs(std::multimap<std::string, std::string>& keyValues) override;

private:
    std::vector<AGPOption*> getOptions();
    // The options put into the widget: the first "Count" ones.
    std::vector<AGPOption*> getShownOptions();
    void createDefaultSelectCommand();
    void destroyWidgets();
    void showList(AGPMessage::MessageType type, bool bringToFront);
    void showMenu(DisplayAPI::Displayable* menu, AGPMessage::MessageType type, bool bringToFront);
    void send(AGPIppCommand* command, std::multimap<std::string, std::string>& keyValues,
              AGPMessage::MessageType type, bool bringToFront);
    void resetMenuState();

    AGPChildCount mTitleCount;
    AGPChildCount mUrlCount;
    AGPChildCount mOptionCount;
    AGPNumbered mNumbered;
    AGPType mType;
    std::uint32_t mCount;
    AGPColumns mColumns;
    AGPFColor* mFColor;
    AGPTColor* mTColor;
    AGPSFColor* mSFColor;
    AGPSTColor* mSTColor;
    bool mItemArrowsShown;
    bool mOptionsEntryInserted;
    bool mPopupMenuDisplayed;
    DisplayAPI::List* mList;
    DisplayAPI::PopupConfirm* mPopupConfirm;
    DisplayAPI::ContextMenu* mItemContextMenu;
    DisplayAPI::ContextMenu* mOptionsContextMenu;
    bool mContextMenuShown;
    std::vector<AGPIppCommand*> mCommands;
    std::vector<AGPIppCommand*> mPopupCommands;
    std::vector<AGPIppCommand*> mOptionCommands;
    std::vector<AGPIppCommand*> mItemCommands;
    AGPIppCommand* mDefaultSelectCommand;
    std::int32_t mSavedIndex;
    std::list<bool> mSavedFlags;
    AGPIppCommand* mSelectCommand;
};
