// The selection item of a form: one display item with a context menu of commands.
#include "AGPIppItem.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppItem.cpp"

#include <algorithm>
#include <string_view>

#include "AGPGUIHandler.h"
#include "AGPIppButton.h"
#include "AGPIppGauge.h"
#include "AGPKey.h"
#include "AGPLabel.h"
#include "AGPLog.h"
#include "AGPMenuCommandListener.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectMap.h"
#include "AGPPhoneletManager.h"
#include "AGPUtils.h"
#include "AGPValue.h"
#include "display/ContextMenu.h"
#include "display/Display.h"
#include "display/Item.h"
#include "display/MenuCommand.h"
#include "text/TranslationInfo.h"

using namespace std::string_view_literals;

namespace {

bool isDisplayItemType(AGPObjectTypeInfo::AGPObjectType type) {
    switch (type) {
    case AGPObjectTypeInfo::ti_IppButton:
    case AGPObjectTypeInfo::ti_IppChoiceGroup:
    case AGPObjectTypeInfo::ti_IppDateField:
    case AGPObjectTypeInfo::ti_IppGauge:
    case AGPObjectTypeInfo::ti_IppImageItem:
    case AGPObjectTypeInfo::ti_IppSpacer:
    case AGPObjectTypeInfo::ti_IppStringItem:
    case AGPObjectTypeInfo::ti_IppTextField:
        return true;
    default:
        return false;
    }
}

bool isKeyValueType(AGPObjectTypeInfo::AGPObjectType type) {
    return type == AGPObjectTypeInfo::ti_IppTextField || type == AGPObjectTypeInfo::ti_IppButton ||
           type == AGPObjectTypeInfo::ti_IppChoiceGroup || type == AGPObjectTypeInfo::ti_IppDateField ||
           type == AGPObjectTypeInfo::ti_IppGauge;
}

bool hasSoftKeyBar() {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    return gui != nullptr && gui->getDisplay() != nullptr && gui->getDisplay()->hasSoftKeyBar() != 0;
}

void setAttribute(AGPCommonBase& element, const char* name, const char* value) {
    std::string attributeName(name);
    std::string attributeValue(value);
    element.addAttribute(attributeName, attributeValue);
}

void deleteTree(AGPCommonBase* root) {
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    if (map != nullptr && map->removeAGPObjectTree(root->getAGPObjectID())) {
        return;
    }
    std::vector<AGPCommonBase*> tree;
    AGPCommonBase::createTreeExplorationVector(root, tree);
    for (AGPCommonBase* element : tree) {
        delete element;
    }
}

} // namespace

AGPIppItem::AGPIppItem()
    : mDisplayItemCount(0, 1), mCommandChildCount(0, -1), mCommandCount(0), mAddedCommandCount(0),
      mFormCommandCount(0), mContextMenuDisplayed(false), mContextMenu(nullptr), mHasBack(false),
      mSelectedCommand(nullptr), mExitMenuCommand(nullptr) {
    registerElement();
}

AGPIppItem::~AGPIppItem() {
    unregisterElement();
    deleteDisplayElements();
    if (mExitMenuCommand != nullptr) {
        deleteTree(mExitMenuCommand);
        mExitMenuCommand = nullptr;
    }
}

bool AGPIppItem::addChild(AGPCommonBase& child) {
    const AGPObjectType type = child.getAGPObjectType();
    if (isDisplayItemType(type)) {
        return addCountedChild(mDisplayItemCount, child);
    }
    if (type == AGPObjectTypeInfo::ti_IppCommand) {
        return addCountedChild(mCommandChildCount, child);
    }
    return false;
}

bool AGPIppItem::addAttribute(std::string& name, std::string& value) {
    if (name == "CommandCount"sv) {
        mCommandCount = parseAGPCommandCount(value);
        return true;
    }
    return false;
}

std::uint32_t AGPIppItem::parseAGPCommandCount(const std::string& text) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        return 0;
    }
    return static_cast<std::uint32_t>(number);
}

AGPCommonBase* AGPIppItem::findDisplayItem() {
    for (AGPCommonBase* child : mChildren) {
        if (isDisplayItemType(child->getAGPObjectType())) {
            return child;
        }
    }
    return nullptr;
}

AGPDisplayItemIfc* AGPIppItem::findDisplayItemIfc() {
    return dynamic_cast<AGPDisplayItemIfc*>(findDisplayItem());
}

AGPKeyValueProviderIfc* AGPIppItem::findKeyValueProvider() {
    for (AGPCommonBase* child : mChildren) {
        if (isKeyValueType(child->getAGPObjectType())) {
            return dynamic_cast<AGPKeyValueProviderIfc*>(child);
        }
    }
    return nullptr;
}

DisplayAPI::Item* AGPIppItem::getDisplayItem() {
    AGPDisplayItemIfc* item = findDisplayItemIfc();
    return item != nullptr ? item->getDisplayItem() : nullptr;
}

void AGPIppItem::setContextMenuArrowIcon(bool shown) {
    if (AGPDisplayItemIfc* item = findDisplayItemIfc()) {
        item->setContextMenuArrowIcon(shown);
    }
}

void AGPIppItem::performCancel() {
    if (AGPDisplayItemIfc* item = findDisplayItemIfc()) {
        item->performCancel();
    }
}

void AGPIppItem::commit() {
    if (AGPDisplayItemIfc* item = findDisplayItemIfc()) {
        item->commit();
    }
}

void AGPIppItem::rollback() {
    if (AGPDisplayItemIfc* item = findDisplayItemIfc()) {
        item->rollback();
    }
}

void AGPIppItem::gatherKeyValues(std::multimap<std::string, std::string>& keyValues) {
    if (AGPKeyValueProviderIfc* provider = findKeyValueProvider()) {
        provider->gatherKeyValues(keyValues);
    }
}

void AGPIppItem::initializeElement() {
    createAndInitDisplayElements();
}

void AGPIppItem::reDisplayElement() {
    createAndInitDisplayElements();
}

void AGPIppItem::hideElement() {
    deleteDisplayElements();
}

void AGPIppItem::createAndInitDisplayElements() {
    deleteDisplayElements();
    mContextMenu = new DisplayAPI::ContextMenu(true);
    mContextMenu->setOwnerId(mAGPId);
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        mContextMenu->addCommandListener(gui->getMenuCommandListener());
    }
}

void AGPIppItem::deleteDisplayElements() {
    delete mContextMenu;
    mContextMenu = nullptr;
    mContextMenuDisplayed = false;
}

void AGPIppItem::setCommandElement(AGPIppCommand& command) {
    mItemCommands.insert(mItemCommands.begin(), &command);
    ++mFormCommandCount;
}

void AGPIppItem::findAndAddCommandsDisplayedOn(std::vector<AGPIppCommand*>& commands,
                                               const AGPIppCommand::AGPDisplayOn* values, int count) {
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() != AGPObjectTypeInfo::ti_IppCommand) {
            continue;
        }
        auto* command = static_cast<AGPIppCommand*>(child);
        if (std::find(values, values + count, command->getAGPDisplayOn()) != values + count) {
            commands.push_back(command);
        }
    }
}

// A command of the item's own making, initialized and processed like one from the document.
AGPIppCommand* AGPIppItem::makeCommand(const char* type, const std::string& labelText,
                                       const std::vector<std::pair<std::string, std::string>>& attributes) {
    auto* command = new AGPIppCommand();
    if (type != nullptr) {
        setAttribute(*command, "Type", type);
    }
    setAttribute(*command, "DisplayOn", "LISTITEM");
    for (const auto& attribute : attributes) {
        setAttribute(*command, attribute.first.c_str(), attribute.second.c_str());
    }
    command->setQueueID(mQueueID);
    auto* label = new AGPLabel();
    std::string content = labelText;
    label->addContent(content);
    label->setQueueID(mQueueID);
    if (command->addChild(*label)) {
        label->setParent(command);
        label->initializeElement();
    } else {
        delete label;
        label = nullptr;
    }
    command->initializeElement();
    if (label != nullptr) {
        label->processElement();
    }
    command->processElement();
    return command;
}

void AGPIppItem::processElement() {
    const AGPIppCommand::AGPDisplayOn shown[] = {AGPIppCommand::LISTITEM, AGPIppCommand::BOTH};
    findAndAddCommandsDisplayedOn(mItemCommands, shown, 2);
    AGPCommonBase* display = findDisplayItem();
    if (!mItemCommands.empty() && mCommandCount != 0 && display != nullptr) {
        if (display->getAGPObjectType() == AGPObjectTypeInfo::ti_IppButton) {
            addButtonSelectCommand(static_cast<AGPIppButton*>(display));
        } else if (display->getAGPObjectType() == AGPObjectTypeInfo::ti_IppImageItem &&
                   mExitMenuCommand == nullptr) {
            // Not part of the document, so not a child: the item frees it itself.
            mExitMenuCommand = makeCommand(nullptr, "Exit menu");
            mItemCommands.insert(mItemCommands.begin(), mExitMenuCommand);
            ++mAddedCommandCount;
        }
    }
    std::stable_sort(mItemCommands.begin(), mItemCommands.end(), AGPIppCommand::compareByPriority);
    createAndInitDisplayElements2ndRound();
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == AGPObjectTypeInfo::ti_IppCommand &&
            static_cast<AGPIppCommand*>(child)->getMessageType() == AGPMessage::Command_Back) {
            mHasBack = true;
        }
    }
}

void AGPIppItem::reDisplayElement2ndRound() {
    createAndInitDisplayElements2ndRound();
}

void AGPIppItem::createAndInitDisplayElements2ndRound() {
    if (DisplayAPI::Item* item = getDisplayItem()) {
        item->setOwnerId(mAGPId);
    }
    if (mContextMenu != nullptr) {
        const size_t shown =
            std::min<size_t>(mItemCommands.size(),
                             static_cast<size_t>(mCommandCount) + mAddedCommandCount + mFormCommandCount);
        for (size_t i = 0; i < shown; ++i) {
            if (mItemCommands[i]->getMenuCommand() != nullptr) {
                mContextMenu->addCommand(mItemCommands[i]->getMenuCommand(), nullptr, false);
            }
        }
    }
    if (!mItemCommands.empty() && mCommandCount != 0) {
        setContextMenuArrowIcon(true);
    }
}

// The button's own pair as the first entry of the menu: an UPDATE command, so choosing it sends
// that pair and nothing else of the form. It becomes a child, deleted with the tree.
void AGPIppItem::addButtonSelectCommand(AGPIppButton* button) {
    const std::string label =
        TranslationInfo("command.select", AGPPhoneletManager::getTranslator()).getText();
    AGPIppCommand* command = makeCommand("UPDATE", label,
                                         {{"Priority", "0"},
                                          {"Key", button->getAGPKey()->getValueText()},
                                          {"Value", button->getAGPValue()->getValueText()}});
    if (!addCountedChild(mCommandChildCount, *command)) {
        std::vector<AGPCommonBase*> tree;
        createTreeExplorationVector(command, tree);
        for (AGPCommonBase* element : tree) {
            delete element;
        }
        return;
    }
    command->setParent(this);
    mItemCommands.insert(mItemCommands.begin(), command);
    ++mCommandCount;
}

void AGPIppItem::startTimer() {
    AGPCommonBase* display = findDisplayItem();
    if (display != nullptr && display->getAGPObjectType() == AGPObjectTypeInfo::ti_IppGauge) {
        static_cast<AGPIppGauge*>(display)->initTimer();
        static_cast<AGPIppGauge*>(display)->startTimer();
    }
}

AGPIppCommand* AGPIppItem::getDefaultIppCommand() {
    for (AGPIppCommand* command : mItemCommands) {
        if (command->getAGPDefault() == AGPIppCommand::DEFAULT_YES) {
            return command;
        }
    }
    return nullptr;
}

AGPIppCommand* AGPIppItem::getSelectedIppCommand() {
    if (mSelectedCommand != nullptr) {
        return mSelectedCommand;
    }
    if (mContextMenu == nullptr) {
        return nullptr;
    }
    const int index = mContextMenu->getSelectedIndex();
    if (index < 0 || static_cast<size_t>(index) >= mItemCommands.size()) {
        return nullptr;
    }
    return mItemCommands[static_cast<size_t>(index)];
}

AGPIppCommand* AGPIppItem::findAGPIppCommandFromDisplayAPICommand(DisplayAPI::Command* command) {
    for (AGPIppCommand* candidate : mItemCommands) {
        if (candidate->getMenuCommand() == command) {
            return candidate;
        }
    }
    return nullptr;
}

void AGPIppItem::queueAgain(AGPMessage& message, AGPId target) {
    message.agpId = target;
    AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler();
    if (queues != nullptr) {
        queues->addToMessageQueue(message, mQueueID);
    }
}

void AGPIppItem::queueNew(AGPMessage::MessageType type, const char* content) {
    AGPMessage message(type, content);
    queueAgain(message, mAGPId);
}

void AGPIppItem::createAndPostDismissContextMenuMessage() {
    AGPMessage message(AGPMessage::Command_Dismiss_context_menu, "Context menu no longer needed");
    queueAgain(message, mParent != nullptr ? mParent->getAGPObjectID() : 0);
    mContextMenuDisplayed = false;
}

void AGPIppItem::processMessage(AGPMessage& message) {
    if (isRemoteTrace()) {
        commandRemoteTrace("Receive message on a IppItem: message=", message);
    }
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    const AGPId parentId = mParent != nullptr ? mParent->getAGPObjectID() : 0;
    AGPCommonBase* display = findDisplayItem();
    const bool displayIsTextField =
        display != nullptr && display->getAGPObjectType() == AGPObjectTypeInfo::ti_IppTextField;
    switch (message.type) {
    case AGPMessage::Command_OK:
        if (mContextMenu != nullptr && gui != nullptr) {
            gui->showDisplayable(mContextMenu, 0, message.type, message.bringToFront);
            mContextMenuDisplayed = true;
        }
        break;
    case AGPMessage::Command_Cancel:
    case AGPMessage::Command_Exit:
    case AGPMessage::Command_Select:
    case AGPMessage::Command_Update:
        queueAgain(message, parentId);
        break;
    case AGPMessage::Command_Back:
        if (mContextMenu == nullptr) {
            break;
        }
        createAndPostDismissContextMenuMessage();
        if (!hasSoftKeyBar() && mContextMenu->getSelectedCommand() != message.command) {
            break;
        }
        queueNew(AGPMessage::Command_Previous_Screen, "Previous Screen requested");
        break;
    case AGPMessage::Command_Screen:
        if (hasSoftKeyBar()) {
            mSelectedCommand = findAGPIppCommandFromDisplayAPICommand(message.command);
        }
        createAndPostDismissContextMenuMessage();
        queueNew(AGPMessage::Command_Screen_By_ID, "Screen requested by ID");
        break;
    case AGPMessage::Command_Screen_By_ID: {
        AGPIppCommand* command = getSelectedIppCommand();
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
    case AGPMessage::Command_Action: {
        createAndPostDismissContextMenuMessage();
        AGPIppCommand* command = hasSoftKeyBar() ? findAGPIppCommandFromDisplayAPICommand(message.command)
                                                 : getSelectedIppCommand();
        if (command != nullptr) {
            command->invokeAction();
        }
        break;
    }
    case AGPMessage::Command_Save:
        if (displayIsTextField) {
            queueAgain(message, display->getAGPObjectID());
        } else {
            createAndPostDismissContextMenuMessage();
        }
        break;
    case AGPMessage::Command_Item_state_changed:
        queueAgain(message, displayIsTextField ? display->getAGPObjectID() : parentId);
        break;
    default:
        createAndPostDismissContextMenuMessage();
        break;
    }
}
