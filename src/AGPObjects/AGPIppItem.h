// The selection item of a form: one display item with a context menu of commands.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "AGPCommonBase.h"
#include "AGPDisplayItemIfc.h"
#include "AGPIppCommand.h"
#include "AGPKeyValueProviderIfc.h"

namespace DisplayAPI {
class Command;
class ContextMenu;
} // namespace DisplayAPI

class AGPIppButton;

class AGPIppItem : public AGPCommonBase, public AGPDisplayItemIfc, public AGPKeyValueProviderIfc {
public:
    AGPIppItem();
    AGPIppItem(const AGPIppItem&) = delete;
    AGPIppItem& operator=(const AGPIppItem&) = delete;
    ~AGPIppItem() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppItem; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return mDisplayItemCount.isCountValid() && mCommandChildCount.isCountValid(); }
    void initializeElement() override;
    void processElement() override;
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override;
    void reDisplayElement2ndRound() override;

    DisplayAPI::Item* getDisplayItem() override;
    void setContextMenuArrowIcon(bool shown) override;
    void performCancel() override;
    void commit() override;
    void rollback() override;

    void gatherKeyValues(std::multimap<std::string, std::string>& keyValues) override;

    std::uint32_t getAGPCommandCount() const { return mCommandCount; }
    void setAGPCommandCount(std::uint32_t count) { mCommandCount = count; }
    static std::uint32_t parseAGPCommandCount(const std::string& text);

    AGPCommonBase* findDisplayItem();
    AGPDisplayItemIfc* findDisplayItemIfc();
    AGPKeyValueProviderIfc* findKeyValueProvider();
    bool hasBack() const { return mHasBack; }
    bool isContextMenuDisplayed() const { return mContextMenuDisplayed; }
    void pushRequestIndication() { mContextMenuDisplayed = false; }
    AGPIppCommand* getDefaultIppCommand();
    AGPIppCommand* getSelectedIppCommand();
    std::vector<AGPIppCommand*> getContextMenuCommands() const { return mItemCommands; }
    // Commands of the screen that the form hands over: they enter the menu first.
    void setCommandElement(AGPIppCommand& command);
    // Appends each IppCommand child whose DisplayOn is one of the `count` given values.
    void findAndAddCommandsDisplayedOn(std::vector<AGPIppCommand*>& commands,
                                       const AGPIppCommand::AGPDisplayOn* values, int count);
    void startTimer();

    AGPIppCommand* findAGPIppCommandFromDisplayAPICommand(DisplayAPI::Command* command);
    void createAndPostDismissContextMenuMessage();
    void createAndInitDisplayElements();
    void createAndInitDisplayElements2ndRound();
    void deleteDisplayElements();

private:
    AGPIppCommand* makeCommand(const char* type, const std::string& label,
                               const std::vector<std::pair<std::string, std::string>>& attributes = {});
    void addButtonSelectCommand(AGPIppButton* button);
    void queueAgain(AGPMessage& message, AGPId target);
    void queueNew(AGPMessage::MessageType type, const char* content);

    AGPChildCount mDisplayItemCount;
    AGPChildCount mCommandChildCount;
    std::uint32_t mCommandCount;
    std::uint32_t mAddedCommandCount;
    std::uint32_t mFormCommandCount;
    bool mContextMenuDisplayed;
    DisplayAPI::ContextMenu* mContextMenu;
    std::vector<AGPIppCommand*> mItemCommands;
    bool mHasBack;
    AGPIppCommand* mSelectedCommand;
    AGPIppCommand* mExitMenuCommand;
};
