// A row of a table: its cells, its key/value pair and its commands with their context menu.
#include "AGPRow.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPRow.cpp"

#include <algorithm>
#include <string_view>

#include "AGPCell.h"
#include "AGPGUIHandler.h"
#include "AGPHeader.h"
#include "AGPIppTable.h"
#include "AGPKey.h"
#include "AGPLog.h"
#include "AGPMenuCommandListener.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPUtils.h"
#include "AGPValue.h"
#include "display/ContextMenu.h"
#include "display/Display.h"
#include "display/MenuCommand.h"
#include "display/TableItem.h"

using namespace std::string_view_literals;

namespace {

bool hasSoftKeyBar() {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    return gui != nullptr && gui->getDisplay() != nullptr && gui->getDisplay()->hasSoftKeyBar() != 0;
}

} // namespace

AGPRow::AGPRow()
    : mCellMaximum(100), mCellCount(0, 100), mIppCommandCount(0, -1), mCommandCount(0), mLineCount(1),
      mKey(new AGPKey("null")), mKeyGiven(false), mValue(new AGPValue("")), mValueGiven(false),
      mContextMenuDisplayed(false), mTableCommandCount(0), mTableItem(nullptr), mContextMenu(nullptr),
      mHasBack(false), mParentType(AGPObjectTypeInfo::ti_NoType) {
    registerElement();
}

AGPRow::~AGPRow() {
    unregisterElement();
    deleteDisplayElements();
    delete mKey;
    delete mValue;
}

bool AGPRow::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Cell:
        return addCountedChild(mCellCount, child);
    case AGPObjectTypeInfo::ti_IppCommand:
        return addCountedChild(mIppCommandCount, child);
    default:
        return false;
    }
}

bool AGPRow::addAttribute(std::string& name, std::string& value) {
    if (name == "Key"sv) {
        AGPKey* key = AGPKey::parseAGPKey(value);
        if (AGPObjectPool::isPooled(*key, AGPObjectPool::getAGPKey_PARSE_FAILED())) {
            delete key;
            return false;
        }
        delete mKey;
        mKey = key;
        mKeyGiven = true;
        return true;
    }
    if (name == "Value"sv) {
        AGPValue* parsed = AGPValue::parseAGPValue(value);
        if (AGPObjectPool::isPooled(*parsed, AGPObjectPool::getAGPValue_PARSE_FAILED())) {
            delete parsed;
            return false;
        }
        delete mValue;
        mValue = parsed;
        mValueGiven = true;
        return true;
    }
    if (name == "LineCount"sv) {
        mLineCount = AGPHeader::parseAGPCount(value, 2);
        return true;
    }
    if (name == "CommandCount"sv) {
        int number = 0;
        mCommandCount =
            AGPUtils::stringToInt(value, number) && number >= 0 ? static_cast<std::uint32_t>(number) : 0;
        return true;
    }
    return false;
}

AGPIppTable* AGPRow::table() {
    return mParent != nullptr && mParent->getAGPObjectType() == AGPObjectTypeInfo::ti_IppTable
               ? static_cast<AGPIppTable*>(mParent)
               : nullptr;
}

void AGPRow::initializeElement() {
    mParentType = mParent != nullptr ? mParent->getAGPObjectType() : AGPObjectTypeInfo::ti_NoType;
    createAndInitDisplayElements();
}

void AGPRow::reDisplayElement() {
    createAndInitDisplayElements();
}

void AGPRow::createAndInitDisplayElements() {
    AGPIppTable* owner = table();
    if (owner == nullptr || mLineCount == 0) {
        return;
    }
    deleteDisplayElements();
    mTableItem =
        new DisplayAPI::TableItem(static_cast<int>(mLineCount), static_cast<int>(owner->getAGPColumnCount()));
    mTableItem->setOwnerId(mAGPId);
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == AGPObjectTypeInfo::ti_Cell) {
            mColumnWidths.push_back(static_cast<int>(static_cast<AGPCell*>(child)->getAGPWidth()));
        }
    }
    mContextMenu = new DisplayAPI::ContextMenu(true);
    mContextMenu->setOwnerId(mAGPId);
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr && gui->getMenuCommandListener() != nullptr) {
        mContextMenu->addCommandListener(gui->getMenuCommandListener());
    }
}

// The table widget owns an appended item; one never appended is still ours.
void AGPRow::deleteDisplayElements() {
    if (mContextMenu != nullptr) {
        AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
        if (gui != nullptr && gui->getMenuCommandListener() != nullptr) {
            mContextMenu->removeCommandListener(gui->getMenuCommandListener());
        }
        delete mContextMenu;
        mContextMenu = nullptr;
    }
    if (mTableItem != nullptr && mTableItem->table() == nullptr) {
        delete mTableItem;
    }
    mTableItem = nullptr;
    mColumnWidths.clear();
    mContextMenuDisplayed = false;
}

void AGPRow::hideElement() {
    deleteDisplayElements();
}

void AGPRow::setCommandElement(AGPIppCommand& command) {
    mItemCommands.insert(mItemCommands.begin(), &command);
    ++mTableCommandCount;
}

void AGPRow::findAndAddCommandsDisplayedOn(std::vector<AGPIppCommand*>& out,
                                           AGPIppCommand::AGPDisplayOn displayOn) {
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() != AGPObjectTypeInfo::ti_IppCommand) {
            continue;
        }
        auto* command = static_cast<AGPIppCommand*>(child);
        if (command->getAGPDisplayOn() == displayOn) {
            out.push_back(command);
        }
    }
}

void AGPRow::processElement() {
    std::vector<AGPIppCommand*> own;
    findAndAddCommandsDisplayedOn(own, AGPIppCommand::LISTITEM);
    findAndAddCommandsDisplayedOn(own, AGPIppCommand::BOTH);
    // Keep the document's order among the row's own commands.
    std::vector<AGPIppCommand*> ordered;
    for (AGPCommonBase* child : mChildren) {
        if (std::find(own.begin(), own.end(), child) != own.end()) {
            ordered.push_back(static_cast<AGPIppCommand*>(child));
        }
    }
    mItemCommands.insert(mItemCommands.end(), ordered.begin(), ordered.end());
    removeDuplicitCommands();
    std::stable_sort(mItemCommands.begin(), mItemCommands.end(), AGPIppCommand::compareByPriority);
    mHasBack = false;
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == AGPObjectTypeInfo::ti_IppCommand &&
            static_cast<AGPIppCommand*>(child)->getAGPType() == AGPIppCommand::BACK) {
            mHasBack = true;
        }
    }
    createAndInitDisplayElements2ndRound();
    if ((hasCommands() || mTableCommandCount > 0) && table() != nullptr) {
        table()->setContextSpace();
    }
}

void AGPRow::reDisplayElement2ndRound() {
    createAndInitDisplayElements2ndRound();
}

// Fills the context menu with the first CommandCount of the row's own commands and every command
// the table handed down.
void AGPRow::createAndInitDisplayElements2ndRound() {
    if (mContextMenu == nullptr) {
        return;
    }
    const size_t wanted = static_cast<size_t>(mCommandCount) + static_cast<size_t>(mTableCommandCount);
    size_t added = 0;
    for (AGPIppCommand* command : mItemCommands) {
        if (added >= wanted) {
            break;
        }
        if (command->getMenuCommand() != nullptr) {
            mContextMenu->addCommand(command->getMenuCommand(), nullptr, false);
            ++added;
        }
    }
    if (mTableItem != nullptr && hasCommands() && (mCommandCount != 0 || mTableCommandCount > 0) &&
        !hasSoftKeyBar()) {
        mTableItem->enableContextMenuArrow(true);
    }
}

void AGPRow::setText(int line, std::string& text, unsigned long cellId, bool active) {
    const int column = indexAmongChildrenOfType(AGPObjectTypeInfo::ti_Cell, cellId);
    if (mTableItem == nullptr || column < 0) {
        return;
    }
    if (!active) {
        mTableItem->setActiveFontColour(line, column, false);
    }
    mTableItem->setText(line, column, text);
}

void AGPRow::setImage(int line, int index, DisplayAPI::Image* image, unsigned long cellId) {
    const int column = indexAmongChildrenOfType(AGPObjectTypeInfo::ti_Cell, cellId);
    if (mTableItem != nullptr && column >= 0) {
        mTableItem->setImage(line, column, index, image);
    }
}

void AGPRow::gatherKeyValues(std::multimap<std::string, std::string>& keyValues) {
    keyValues.insert(std::make_pair(mKey->getValueText(), mValue->getValueText()));
}

AGPIppCommand* AGPRow::getDefaultIppCommand() {
    for (AGPIppCommand* command : mItemCommands) {
        if (command->getAGPDefault() == AGPIppCommand::DEFAULT_YES ||
            command->getAGPSelect() == AGPIppCommand::SELECT_YES) {
            return command;
        }
    }
    return nullptr;
}

AGPIppCommand* AGPRow::getSelectedIppCommand(DisplayAPI::Command* command) {
    if (command == nullptr) {
        return nullptr;
    }
    for (AGPIppCommand* candidate : mItemCommands) {
        if (candidate->getMenuCommand() == command) {
            return candidate;
        }
    }
    return nullptr;
}

void AGPRow::post(AGPMessage::MessageType type, const std::string& content, AGPId target,
                  DisplayAPI::Command* command, bool bringToFront) {
    AGPMessage message(type, content);
    message.agpId = target;
    message.command = command;
    message.bringToFront = bringToFront;
    if (AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler()) {
        queues->addToMessageQueue(message);
    }
}

void AGPRow::createAndPostDismissContextMenuMessage() {
    AGPIppTable* owner = table();
    if (owner != nullptr) {
        post(AGPMessage::Command_Dismiss_context_menu, "Context menu no longer needed",
             owner->getAGPObjectID(), nullptr, false);
    }
    mContextMenuDisplayed = false;
}

void AGPRow::processMessage(AGPMessage& message) {
    if (isRemoteTrace()) {
        commandRemoteTrace("Receive message on a IppItem: message=", message);
    }
    if (!hasCommands()) {
        return;
    }
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    AGPIppTable* owner = table();
    switch (message.type) {
    case AGPMessage::Command_Back:
        if (mContextMenu == nullptr) {
            break;
        }
        createAndPostDismissContextMenuMessage();
        if (!hasSoftKeyBar() && getSelectedIppCommand(message.command) == nullptr) {
            break;
        }
        post(AGPMessage::Command_Previous_Screen, "Previous Screen requested", mAGPId, nullptr,
             message.bringToFront);
        break;
    case AGPMessage::Command_Cancel:
    case AGPMessage::Command_Exit:
    case AGPMessage::Command_Select:
    case AGPMessage::Command_Update:
        if (owner != nullptr) {
            AGPMessage forwarded = message;
            forwarded.agpId = owner->getAGPObjectID();
            if (AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler()) {
                queues->addToMessageQueue(forwarded);
            }
        }
        break;
    case AGPMessage::Command_OK:
    case AGPMessage::Command_Right:
        if (mContextMenu != nullptr && gui != nullptr && mContextMenu->size() > 0) {
            gui->showDisplayable(mContextMenu, 0, message.type, message.bringToFront);
            mContextMenuDisplayed = true;
        }
        break;
    case AGPMessage::Command_Screen:
        createAndPostDismissContextMenuMessage();
        post(AGPMessage::Command_Screen_By_ID, "Screen requested by ID", mAGPId, message.command,
             message.bringToFront);
        break;
    case AGPMessage::Command_Screen_By_ID: {
        AGPIppCommand* command = getSelectedIppCommand(message.command);
        if (command != nullptr && gui != nullptr) {
            gui->commandShowScreenID(command->getScreenID(), mQueueID, message.bringToFront);
        }
        break;
    }
    case AGPMessage::Command_Previous_Screen:
        if (gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, message.bringToFront);
        }
        break;
    default:
        createAndPostDismissContextMenuMessage();
        break;
    }
}
