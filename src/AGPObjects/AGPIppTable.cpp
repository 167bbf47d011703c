// The full-screen table: rows of cells in columns under an optional header, with row menus.
#include "AGPIppTable.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppTable.cpp"

#include <algorithm>
#include <string_view>

#include "AGPCommandListener.h"
#include "AGPGUIHandler.h"
#include "AGPHeader.h"
#include "AGPItemStateListener.h"
#include "AGPLog.h"
#include "AGPMenuCommandListener.h"
#include "AGPObjectMap.h"
#include "AGPPhoneletManager.h"
#include "AGPRow.h"
#include "AGPUtils.h"
#include "display/ContextMenu.h"
#include "display/Display.h"
#include "display/MenuCommand.h"
#include "display/PopupConfirm.h"
#include "display/Table.h"
#include "display/TableItem.h"

using namespace std::string_view_literals;

namespace {

AGPGUIHandler* guiHandler() {
    return AGPPhoneletManager::findAGPGUIHandler();
}

bool hasSoftKeyBar() {
    AGPGUIHandler* gui = guiHandler();
    return gui != nullptr && gui->getDisplay() != nullptr && gui->getDisplay()->hasSoftKeyBar() != 0;
}

DisplayAPI::CommandListener* menuListener() {
    AGPGUIHandler* gui = guiHandler();
    return gui != nullptr ? gui->getMenuCommandListener() : nullptr;
}

DisplayAPI::CommandListener* commandListener() {
    AGPGUIHandler* gui = guiHandler();
    return gui != nullptr ? gui->getCommandListener() : nullptr;
}

bool isPopupType(AGPIppCommand::AGPType type) {
    return type == AGPIppCommand::BACK || type == AGPIppCommand::CANCEL || type == AGPIppCommand::EXIT;
}

AGPIppCommand* commandOfEntry(const std::vector<AGPIppCommand*>& commands, DisplayAPI::Command* entry) {
    if (entry == nullptr) {
        return nullptr;
    }
    for (AGPIppCommand* command : commands) {
        if (command->getMenuCommand() == entry) {
            return command;
        }
    }
    return nullptr;
}

} // namespace

AGPIppTable::AGPIppTable()
    : mUrlCount(0, 1), mHeaderCount(0, 1), mRowCount(0, -1), mOptionCount(0, 1), mColumnCount(1),
      mSelectable(SELECTABLE_NO), mTable(nullptr), mPopupMenuDisplayed(false), mHasBack(false),
      mContextSpace(false), mOptionsContextMenu(nullptr), mContextMenuDisplayed(false),
      mPopupConfirm(nullptr), mSavedFocus(-1) {
    registerElement();
}

// Unlike a hide, the end of the element frees its widgets even when the GUI handler is gone.
AGPIppTable::~AGPIppTable() {
    unregisterElement();
    destroyWidgets();
}

bool AGPIppTable::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Url:
        return addCountedChild(mUrlCount, child);
    case AGPObjectTypeInfo::ti_Header:
        return addCountedChild(mHeaderCount, child);
    case AGPObjectTypeInfo::ti_Row:
        return addCountedChild(mRowCount, child);
    case AGPObjectTypeInfo::ti_Option:
        return addCountedChild(mOptionCount, child);
    default:
        return false;
    }
}

bool AGPIppTable::addAttribute(std::string& name, std::string& value) {
    if (name == "ColumnCount"sv) {
        mColumnCount = parseAGPColumnCount(value);
        return true;
    }
    if (name == "Selectable"sv) {
        mSelectable = SELECTABLE_NO;
        return true;
    }
    return false;
}

std::uint32_t AGPIppTable::parseAGPColumnCount(const std::string& text) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        return 1;
    }
    return static_cast<std::uint32_t>(number);
}

std::vector<AGPRow*> AGPIppTable::getRows() {
    std::vector<AGPRow*> rows;
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == AGPObjectTypeInfo::ti_Row) {
            rows.push_back(static_cast<AGPRow*>(child));
        }
    }
    return rows;
}

AGPRow* AGPIppTable::focusedRow() {
    DisplayAPI::TableItem* item = mTable != nullptr ? mTable->getSelected() : nullptr;
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    if (item == nullptr || map == nullptr) {
        return nullptr;
    }
    AGPCommonBase* element = map->getAGPObject(static_cast<AGPId>(item->getOwnerId()));
    return element != nullptr && element->getAGPObjectType() == AGPObjectTypeInfo::ti_Row
               ? static_cast<AGPRow*>(element)
               : nullptr;
}

// ---- Widgets ----

void AGPIppTable::initializeElement() {
    createAndInitDisplayElements();
}

void AGPIppTable::reDisplayElement() {
    createAndInitDisplayElements();
}

void AGPIppTable::createAndInitDisplayElements() {
    if (mTable != nullptr) {
        return;
    }
    auto* header = static_cast<AGPHeader*>(getChildByType(AGPObjectTypeInfo::ti_Header));
    const std::vector<AGPRow*> rows = getRows();
    if (header == nullptr && rows.empty()) {
        AGP_LOG(6, "AGPIppTable::createAndInitDisplayElements() row and header not exists!");
    }
    mTable =
        new DisplayAPI::Table(header != nullptr ? static_cast<int>(header->getAGPLineCount()) : 0,
                              header != nullptr ? static_cast<int>(header->getAGPColumnCount()) : 0, true);
    mTable->setOwnerId(mAGPId);
    if (DisplayAPI::CommandListener* listener = commandListener()) {
        mTable->addCommandListener(listener);
    }
    AGPGUIHandler* gui = guiHandler();
    if (gui != nullptr && gui->getItemStateListener() != nullptr) {
        mTable->addItemStateListener(gui->getItemStateListener());
    }
    mColumnWidths = rows.empty() ? std::vector<int>() : rows.front()->getColumnWidths();
}

void AGPIppTable::createAndInitDisplayElements2ndRound() {
    if (mTable == nullptr) {
        return;
    }
    const size_t columns = std::min<size_t>(mColumnCount, mColumnWidths.size());
    for (AGPRow* row : getRows()) {
        DisplayAPI::TableItem* item = row->getTableItem();
        if (item == nullptr) {
            continue;
        }
        for (size_t i = 0; i < columns; ++i) {
            if (mColumnWidths[i] >= 0 && mColumnWidths[i] <= 100) {
                item->setColumnWidthPercent(static_cast<int>(i), mColumnWidths[i]);
            }
        }
        if (mContextSpace) {
            item->reserveSpaceForContextMenuArrow();
        }
        if (row->hasBack()) {
            mHasBack = true;
        }
        mTable->append(item);
    }
    if (mContextSpace) {
        mTable->reserveSpaceForContextMenuArrow();
    }
}

void AGPIppTable::initContextMenuOptions() {
    mOptionsContextMenu = new DisplayAPI::ContextMenu(true);
    mOptionsContextMenu->setOwnerId(mAGPId);
    if (DisplayAPI::CommandListener* listener = menuListener()) {
        mOptionsContextMenu->addCommandListener(listener);
    }
}

void AGPIppTable::initPopupConfirm() {
    mPopupConfirm = new DisplayAPI::PopupConfirm(true);
    mPopupConfirm->setState(1);
    mPopupConfirm->setOwnerId(mAGPId);
    if (DisplayAPI::CommandListener* listener = menuListener()) {
        mPopupConfirm->addCommandListener(listener);
    }
    AGPGUIHandler* gui = guiHandler();
    if (gui != nullptr && gui->getItemStateListener() != nullptr) {
        mPopupConfirm->addItemStateListener(gui->getItemStateListener());
    }
}

void AGPIppTable::addOptionComamnds() {
    for (AGPIppCommand* command : mOptionCommands) {
        setTimerCommand(command);
        if (command->getMenuCommand() == nullptr) {
            continue;
        }
        if (mOptionsContextMenu == nullptr) {
            initContextMenuOptions();
        }
        mOptionsContextMenu->addCommand(command->getMenuCommand(), nullptr, false);
    }
}

void AGPIppTable::addPopupCommands() {
    for (AGPIppCommand* command : mPopupCommands) {
        setTimerCommand(command);
        if (command->getMenuCommand() == nullptr) {
            continue;
        }
        if (mPopupConfirm == nullptr) {
            initPopupConfirm();
        }
        mPopupConfirm->addCommand(command->getMenuCommand());
    }
}

void AGPIppTable::hideElement() {
    saveTableState();
    deleteDisplayElements();
}

void AGPIppTable::reDisplayElement2ndRound() {
    addOptionComamnds();
    addPopupCommands();
    createAndInitDisplayElements2ndRound();
    // After the rows are back: a focus on a row that is not there yet would be ignored.
    retrieveTableState();
}

void AGPIppTable::saveTableState() {
    if (mTable != nullptr) {
        mSavedFocus = mTable->getSelectedIndex();
    }
}

void AGPIppTable::retrieveTableState() {
    if (mTable != nullptr && mSavedFocus >= 0) {
        mTable->setSelectedIndex(mSavedFocus);
    }
    mSavedFocus = -1;
}

void AGPIppTable::deleteDisplayElements() {
    if (guiHandler() == nullptr) {
        return;
    }
    destroyWidgets();
}

void AGPIppTable::destroyWidgets() {
    DisplayAPI::CommandListener* menus = menuListener();
    DisplayAPI::CommandListener* commands = commandListener();
    if (mOptionsContextMenu != nullptr && menus != nullptr) {
        mOptionsContextMenu->removeCommandListener(menus);
    }
    if (mPopupConfirm != nullptr && menus != nullptr) {
        mPopupConfirm->removeCommandListener(menus);
    }
    if (mTable != nullptr && commands != nullptr) {
        mTable->removeCommandListener(commands);
    }
    delete mOptionsContextMenu;
    delete mPopupConfirm;
    delete mTable;
    mOptionsContextMenu = nullptr;
    mPopupConfirm = nullptr;
    mTable = nullptr;
    resetMenuState();
}

// ---- Commands ----

void AGPIppTable::setCommandElement(AGPIppCommand& command) {
    const AGPIppCommand::AGPDisplayOn displayOn = command.getAGPDisplayOn();
    if (displayOn == AGPIppCommand::LISTITEM || displayOn == AGPIppCommand::BOTH) {
        for (AGPRow* row : getRows()) {
            row->setCommandElement(command);
        }
    }
    if (displayOn == AGPIppCommand::NONE) {
        observeEventCommand(&command);
        setTimerCommand(&command);
        return;
    }
    const AGPIppCommand::AGPType type = command.getAGPType();
    if (type == AGPIppCommand::BACK) {
        mPopupCommands.push_back(&command);
    } else if (type == AGPIppCommand::CANCEL || type == AGPIppCommand::EXIT) {
        mPopupCommands.push_back(&command);
        setTimerCommand(&command);
        return;
    }
    if (displayOn != AGPIppCommand::LISTITEM) {
        mOptionCommands.push_back(&command);
    }
    setTimerCommand(&command);
}

void AGPIppTable::findAndAddCommandsDisplayedOn(std::vector<AGPIppCommand*>& out,
                                                AGPIppCommand::AGPDisplayOn displayOn) {
    for (AGPRow* row : getRows()) {
        for (AGPCommonBase* child : row->getSequence()) {
            if (child->getAGPObjectType() != AGPObjectTypeInfo::ti_IppCommand) {
                continue;
            }
            auto* command = static_cast<AGPIppCommand*>(child);
            const AGPIppCommand::AGPDisplayOn shown = command->getAGPDisplayOn();
            if (shown == displayOn ||
                (displayOn == AGPIppCommand::DISPLAYON_DEFAULT && shown == AGPIppCommand::BOTH)) {
                out.push_back(command);
            }
        }
    }
}

void AGPIppTable::processElement() {
    std::vector<AGPIppCommand*> shown;
    findAndAddCommandsDisplayedOn(shown, AGPIppCommand::DISPLAYON_DEFAULT);
    for (AGPIppCommand* command : shown) {
        const AGPIppCommand::AGPType type = command->getAGPType();
        if (type == AGPIppCommand::BACK) {
            mPopupCommands.push_back(command);
            mOptionCommands.push_back(command);
        } else if (isPopupType(type)) {
            mPopupCommands.push_back(command);
        } else {
            mOptionCommands.push_back(command);
        }
    }
    std::vector<AGPIppCommand*> onItems;
    findAndAddCommandsDisplayedOn(onItems, AGPIppCommand::LISTITEM);
    for (AGPIppCommand* command : onItems) {
        if (isPopupType(command->getAGPType())) {
            mPopupCommands.insert(mPopupCommands.begin(), command);
        }
    }
    std::vector<AGPIppCommand*> onEvents;
    findAndAddCommandsDisplayedOn(onEvents, AGPIppCommand::NONE);
    for (AGPIppCommand* command : onEvents) {
        observeEventCommand(command);
    }
    AGPIppCommand::removeDuplicitCommands(mOptionCommands);
    std::stable_sort(mOptionCommands.begin(), mOptionCommands.end(), AGPIppCommand::compareByPriority);
    addOptionComamnds();
    AGPIppCommand::removeDuplicitCommands(mPopupCommands);
    std::sort(mPopupCommands.begin(), mPopupCommands.end(), AGPIppCommand::compareByPriority);
    addPopupCommands();
    createAndInitDisplayElements2ndRound();
}

AGPIppCommand* AGPIppTable::getDefaultIppCommand() {
    for (AGPIppCommand* command : mOptionCommands) {
        if (command->getAGPDefault() == AGPIppCommand::DEFAULT_YES ||
            command->getAGPSelect() == AGPIppCommand::SELECT_YES) {
            return command;
        }
    }
    return nullptr;
}

AGPIppCommand* AGPIppTable::getSelectedIppCommand(DisplayAPI::Command* command) {
    return commandOfEntry(mOptionCommands, command);
}

void AGPIppTable::gatherKeyValues(std::multimap<std::string, std::string>& keyValues) {
    if (AGPRow* row = focusedRow()) {
        row->gatherKeyValues(keyValues);
    }
}

// ---- Messages ----

void AGPIppTable::showTable(AGPMessage::MessageType type, bool bringToFront) {
    AGPGUIHandler* gui = guiHandler();
    if (gui != nullptr && mTable != nullptr) {
        gui->showDisplayableTable(mTable, mQueueID, type, bringToFront);
    }
}

void AGPIppTable::showMenu(DisplayAPI::Displayable* menu, AGPMessage::MessageType type, bool bringToFront) {
    AGPGUIHandler* gui = guiHandler();
    if (gui != nullptr && menu != nullptr) {
        gui->showDisplayable(menu, 0, type, bringToFront);
    }
}

void AGPIppTable::resetMenuState() {
    mPopupMenuDisplayed = false;
    mContextMenuDisplayed = false;
}

void AGPIppTable::send(AGPIppCommand* command, std::multimap<std::string, std::string>& keyValues,
                       AGPMessage::MessageType type, bool bringToFront) {
    if (mPopupMenuDisplayed || isContextMenuDisplayed()) {
        showTable(type, bringToFront);
    }
    if (AGPRow* row = focusedRow()) {
        row->pushRequestIndication();
    }
    if (command != nullptr) {
        command->gatherKeyValues(keyValues);
    }
    reReadFromUrl(keyValues);
    resetMenuState();
}

void AGPIppTable::processMessage(AGPMessage& message) {
    if (mTable == nullptr) {
        AGP_LOG(6, "Command called on the AGPIppTable with deleted DisplayAPI objects - command will be "
                   "discarded\n");
        return;
    }
    AGPRow* focused = focusedRow();
    if (isRemoteTrace()) {
        commandRemoteTrace("Receive message on a IppTable: message=", message);
    }
    AGPGUIHandler* gui = guiHandler();
    const bool bringToFront = message.bringToFront;
    const bool fromTimer = message.type == AGPMessage::Command_Timer;
    AGPMessage::MessageType type = message.type;
    DisplayAPI::Command* widgetCommand = message.command;
    AGPIppCommand* command = nullptr;

    switch (message.type) {
    case AGPMessage::Command_Right:
        if (hasSoftKeyBar() && (gui == nullptr || gui->getDisplay() == nullptr ||
                                !gui->getDisplay()->isCurrentForKeyEvents(message.displayable))) {
            return;
        }
        if (focused == nullptr) {
            command = getSelectedIppCommand(message.command);
            if (command == nullptr) {
                // Above the rows, Right opens the table's options.
                if (mOptionsContextMenu != nullptr) {
                    showMenu(mOptionsContextMenu, AGPMessage::Command_OK, bringToFront);
                    mContextMenuDisplayed = true;
                    mPopupMenuDisplayed = false;
                }
                return;
            }
            type = command->getMessageType();
        }
        break;
    case AGPMessage::Command_Timer:
        command = mTimerCommand;
        if (command == nullptr) {
            return;
        }
        type = command->getMessageType();
        widgetCommand = command->getMenuCommand();
        break;
    case AGPMessage::Command_OK:
        if (focused != nullptr) {
            command = focused->getDefaultIppCommand();
            if (command != nullptr) {
                type = command->getMessageType();
            } else if (!focused->hasCommands()) {
                type = AGPMessage::Command_Select;
            }
            break;
        }
        command = getDefaultIppCommand();
        if (command == nullptr) {
            if (mOptionsContextMenu != nullptr) {
                showMenu(mOptionsContextMenu, AGPMessage::Command_OK, bringToFront);
                mContextMenuDisplayed = true;
                mPopupMenuDisplayed = false;
            }
            return;
        }
        type = command->getMessageType();
        break;
    default:
        command = getSelectedIppCommand(message.command);
        if (command == nullptr && focused != nullptr) {
            command = focused->getSelectedIppCommand(message.command);
        }
        break;
    }

    std::multimap<std::string, std::string> keyValues;
    switch (type) {
    case AGPMessage::Command_Back:
        handleBackCommand(widgetCommand, bringToFront);
        break;
    case AGPMessage::Command_Cancel:
        if (!fromTimer) {
            showTable(AGPMessage::Command_Cancel, bringToFront);
            resetMenuState();
        }
        break;
    case AGPMessage::Command_Exit:
        if (command != nullptr) {
            command->gatherKeyValues(keyValues);
        }
        exitURL(keyValues);
        break;
    case AGPMessage::Command_Screen:
        if (command == nullptr) {
            break;
        }
        if (mContextMenuDisplayed) {
            showTable(AGPMessage::Command_Back, bringToFront);
            resetMenuState();
        }
        if (gui != nullptr) {
            gui->commandShowScreenID(command->getScreenID(), mQueueID, bringToFront);
        }
        break;
    case AGPMessage::Command_Skip_Back:
    case AGPMessage::Command_Dismiss_context_menu:
        showTable(type, bringToFront);
        resetMenuState();
        break;
    case AGPMessage::Command_Select:
        gatherKeyValues(keyValues);
        send(command, keyValues, type, bringToFront);
        break;
    case AGPMessage::Command_Update:
        send(command, keyValues, type, bringToFront);
        break;
    default:
        if (focused != nullptr) {
            focused->processMessage(message);
        }
        break;
    }
}

void AGPIppTable::handleBackCommand(DisplayAPI::Command* command, bool bringToFront) {
    AGPGUIHandler* gui = guiHandler();
    if (mPopupMenuDisplayed) {
        showTable(AGPMessage::Command_Back, bringToFront);
        if (commandOfEntry(mPopupCommands, command) != nullptr && gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, bringToFront);
        }
        resetMenuState();
        return;
    }
    if (getSelectedIppCommand(command) != nullptr) {
        showTable(AGPMessage::Command_Back, bringToFront);
        if (gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, bringToFront);
        }
        resetMenuState();
        return;
    }
    if (mContextMenuDisplayed && !hasSoftKeyBar()) {
        showTable(AGPMessage::Command_Back, bringToFront);
        resetMenuState();
        return;
    }
    if (mPopupConfirm == nullptr) {
        return;
    }
    if (mPopupCommands.size() == 1 && mPopupCommands.front()->getAGPType() == AGPIppCommand::BACK) {
        if (gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, bringToFront);
        }
        resetMenuState();
        return;
    }
    showMenu(mPopupConfirm, AGPMessage::Command_Back, bringToFront);
    mPopupMenuDisplayed = true;
    mContextMenuDisplayed = false;
}

void AGPIppTable::processNotifyEvent(AGPIppCommand::AGPEvent event) {
    runObservedEventCommand(event);
}

// ---- State ----

DisplayAPI::Displayable* AGPIppTable::getDisplayAPIDisplayable() {
    return mTable;
}

void AGPIppTable::setHighlight(bool on) {
    if (mTable != nullptr) {
        mTable->setSelectionHighlight(on);
    }
}

void AGPIppTable::restoreFocusAndHighlight() {
    if (mTable != nullptr) {
        mTable->restoreFocusAndShowHighlight();
    }
}

bool AGPIppTable::isContextMenuDisplayed() {
    if (AGPRow* row = focusedRow()) {
        return row->isContextMenuDisplayed() || mContextMenuDisplayed;
    }
    return mContextMenuDisplayed;
}

void AGPIppTable::pushRequestIndication() {
    if (AGPRow* row = focusedRow()) {
        row->pushRequestIndication();
    }
    mPopupMenuDisplayed = false;
}

void AGPIppTable::setTitleColumnWidth(int column, int width) {
    if (mTable != nullptr && width <= 100) {
        mTable->setTitleColumnWidth(column, width);
    }
}

void AGPIppTable::setText(int line, int column, std::string& text) {
    if (mTable != nullptr) {
        mTable->setText(line, column, text);
    }
}

void AGPIppTable::setImage(int line, int column, int index, DisplayAPI::Image* image) {
    if (mTable != nullptr) {
        mTable->setImage(line, column, index, image);
    }
}
