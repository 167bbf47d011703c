// The full-screen list of options: plain, exclusive or multiple, with its menus and requests.
#include "AGPIppList.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppList.cpp"

#include <algorithm>
#include <string_view>

#include "AGPFColor.h"
#include "AGPGUIHandler.h"
#include "AGPIppTicker.h"
#include "AGPLabel.h"
#include "AGPLog.h"
#include "AGPMenuCommandListener.h"
#include "AGPObjectMap.h"
#include "AGPObjectPool.h"
#include "AGPOption.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "AGPSFColor.h"
#include "AGPSTColor.h"
#include "AGPTColor.h"
#include "AGPUtils.h"
#include "display/ContextMenu.h"
#include "display/Display.h"
#include "display/ExclusiveList.h"
#include "display/List.h"
#include "display/ListItem.h"
#include "display/MenuCommand.h"
#include "display/MultipleList.h"
#include "display/PopupConfirm.h"
#include "text/TranslationInfo.h"

using namespace std::string_view_literals;

namespace {

bool hasSoftKeyBar() {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    return gui != nullptr && gui->getDisplay() != nullptr && gui->getDisplay()->hasSoftKeyBar() != 0;
}

DisplayAPI::CommandListener* menuListener() {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    return gui != nullptr ? gui->getMenuCommandListener() : nullptr;
}

bool isPopupType(AGPIppCommand::AGPType type) {
    return type == AGPIppCommand::BACK || type == AGPIppCommand::CANCEL || type == AGPIppCommand::EXIT;
}

void setAttribute(AGPCommonBase& element, const char* name, const char* value) {
    std::string attributeName(name);
    std::string attributeValue(value);
    element.addAttribute(attributeName, attributeValue);
}

} // namespace

AGPIppList::AGPIppList()
    : mTitleCount(0, 1), mUrlCount(0, 1), mOptionCount(0, -1), mNumbered(NUMBERED_NO), mType(PLAIN),
      mCount(0), mColumns(COLUMNS_1), mFColor(nullptr), mTColor(nullptr), mSFColor(nullptr),
      mSTColor(nullptr), mItemArrowsShown(false), mOptionsEntryInserted(false), mPopupMenuDisplayed(false),
      mList(nullptr), mPopupConfirm(nullptr), mItemContextMenu(nullptr), mOptionsContextMenu(nullptr),
      mContextMenuShown(false), mDefaultSelectCommand(nullptr), mSavedIndex(-1), mSelectCommand(nullptr) {
    registerElement();
}

AGPIppList::~AGPIppList() {
    unregisterElement();
    if (mDefaultSelectCommand != nullptr) {
        AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
        if (map == nullptr || !map->removeAGPObjectTree(mDefaultSelectCommand->getAGPObjectID())) {
            std::vector<AGPCommonBase*> tree;
            AGPCommonBase::createTreeExplorationVector(mDefaultSelectCommand, tree);
            for (AGPCommonBase* element : tree) {
                delete element;
            }
        }
        mDefaultSelectCommand = nullptr;
    }
    // Unlike a hide, the end of the element frees its widgets even when the GUI handler is gone.
    destroyWidgets();
    delete mFColor;
    delete mTColor;
    delete mSFColor;
    delete mSTColor;
}

bool AGPIppList::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Title:
        return addCountedChild(mTitleCount, child);
    case AGPObjectTypeInfo::ti_Url:
        return addCountedChild(mUrlCount, child);
    case AGPObjectTypeInfo::ti_Option:
        return addCountedChild(mOptionCount, child);
    default:
        return false;
    }
}

bool AGPIppList::addAttribute(std::string& name, std::string& value) {
    if (name == "Type"sv) {
        mType = parseAGPType(value);
        return true;
    }
    if (name == "Count"sv) {
        mCount = parseAGPCount(value);
        return true;
    }
    if (name == "Columns"sv) {
        mColumns = parseAGPColumns(value);
        return true;
    }
    if (name == "Numbered"sv) {
        mNumbered = parseAGPNumbered(value);
        return true;
    }
    if (name == "FColor"sv) {
        return AGPObjectPool::replaceColor(mFColor, value, &AGPFColor::parseAGPFColor,
                                           AGPObjectPool::getAGPFColor_PARSE_FAILED());
    }
    if (name == "TColor"sv) {
        return AGPObjectPool::replaceColor(mTColor, value, &AGPTColor::parseAGPTColor,
                                           AGPObjectPool::getAGPTColor_PARSE_FAILED());
    }
    if (name == "SFColor"sv) {
        return AGPObjectPool::replaceColor(mSFColor, value, &AGPSFColor::parseAGPSFColor,
                                           AGPObjectPool::getAGPSFColor_PARSE_FAILED());
    }
    if (name == "STColor"sv) {
        return AGPObjectPool::replaceColor(mSTColor, value, &AGPSTColor::parseAGPSTColor,
                                           AGPObjectPool::getAGPSTColor_PARSE_FAILED());
    }
    return false;
}

AGPIppList::AGPType AGPIppList::parseAGPType(const std::string& text) {
    return text == "EXCLUSIVE" ? EXCLUSIVE : text == "MULTIPLE" ? MULTIPLE : PLAIN;
}

std::uint32_t AGPIppList::parseAGPCount(const std::string& text) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        return 0;
    }
    return static_cast<std::uint32_t>(number);
}

AGPIppList::AGPColumns AGPIppList::parseAGPColumns(const std::string& text) {
    return text == "3" ? COLUMNS_3 : COLUMNS_1;
}

AGPIppList::AGPNumbered AGPIppList::parseAGPNumbered(const std::string& text) {
    return text == "YES" ? NUMBERED_YES : NUMBERED_NO;
}

std::vector<AGPOption*> AGPIppList::getOptions() {
    std::vector<AGPOption*> options;
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == AGPObjectTypeInfo::ti_Option) {
            options.push_back(static_cast<AGPOption*>(child));
        }
    }
    return options;
}

std::vector<AGPOption*> AGPIppList::getShownOptions() {
    std::vector<AGPOption*> options = getOptions();
    if (options.size() > mCount) {
        options.resize(mCount);
    }
    return options;
}

void AGPIppList::initializeElement() {
    createAndInitDisplayElements();
}

void AGPIppList::reDisplayElement() {
    createAndInitDisplayElements();
}

void AGPIppList::createAndInitDisplayElements() {
    destroyWidgets();
    switch (mType) {
    case EXCLUSIVE:
        mList = new DisplayAPI::ExclusiveList();
        break;
    case MULTIPLE:
        mList = new DisplayAPI::MultipleList();
        break;
    case PLAIN:
        mList = new DisplayAPI::List(1);
        break;
    }
    mList->setOwnerId(mAGPId);
    AGPCommonBase* title = getChildByType(AGPObjectTypeInfo::ti_Title);
    if (title != nullptr) {
        mList->setTitle(title->getContent());
    }
    for (AGPOption* option : getShownOptions()) {
        if (option->getListItem() != nullptr) {
            mList->append(option->takeListItem());
        }
    }
    if (DisplayAPI::CommandListener* listener = menuListener()) {
        mList->addCommandListener(listener);
    }
}

void AGPIppList::setCommandElement(AGPIppCommand& command) {
    mCommands.push_back(&command);
    if (mList == nullptr) {
        return;
    }
    if (isPopupType(command.getAGPType())) {
        mPopupCommands.push_back(&command);
    }
    const AGPIppCommand::AGPDisplayOn displayOn = command.getAGPDisplayOn();
    if (displayOn == AGPIppCommand::DISPLAYON_DEFAULT || displayOn == AGPIppCommand::BOTH) {
        if (command.getMenuCommand() != nullptr && command.getAGPType() != AGPIppCommand::CANCEL &&
            command.getAGPType() != AGPIppCommand::EXIT) {
            mOptionCommands.push_back(&command);
        }
    }
    if (displayOn == AGPIppCommand::LISTITEM || displayOn == AGPIppCommand::BOTH) {
        mItemCommands.push_back(&command);
    }
}

void AGPIppList::processElement() {
    if (mType == PLAIN && mDefaultSelectCommand == nullptr &&
        std::none_of(mItemCommands.begin(), mItemCommands.end(),
                     [](AGPIppCommand* c) { return c->getAGPType() == AGPIppCommand::SELECT; })) {
        createDefaultSelectCommand();
    }
    mSelectCommand = nullptr;
    for (AGPIppCommand* command : mItemCommands) {
        if (command->getAGPSelect() == AGPIppCommand::SELECT_YES) {
            mSelectCommand = command;
            break;
        }
    }
    std::sort(mOptionCommands.begin(), mOptionCommands.end(), AGPIppCommand::compareByPriority);
    std::sort(mItemCommands.begin(), mItemCommands.end(), AGPIppCommand::compareByPriority);
    std::sort(mPopupCommands.begin(), mPopupCommands.end(), AGPIppCommand::compareByPriority);
    addOptionComamnds();
    addItemCommands();
    addPopupCommands();
    for (AGPIppCommand* command : mCommands) {
        setTimerCommand(command);
        observeEventCommand(command);
    }
    performCancel();
}

// The command is not part of the document, so it is not a child: the list frees it itself.
void AGPIppList::createDefaultSelectCommand() {
    auto* command = new AGPIppCommand();
    setAttribute(*command, "Type", "SELECT");
    setAttribute(*command, "DisplayOn", "LISTITEM");
    setAttribute(*command, "Priority", "0");
    command->setQueueID(mQueueID);
    auto* label = new AGPLabel();
    std::string text = TranslationInfo("command.select", AGPPhoneletManager::getTranslator()).getText();
    label->addContent(text);
    label->setQueueID(mQueueID);
    if (command->addChild(*label)) {
        label->setParent(command);
    } else {
        delete label;
        label = nullptr;
    }
    if (label != nullptr) {
        label->initializeElement();
    }
    command->initializeElement();
    if (label != nullptr) {
        label->processElement();
    }
    command->processElement();
    mDefaultSelectCommand = command;
    mItemCommands.push_back(command);
}

void AGPIppList::addOptionComamnds() {
    if (mList == nullptr) {
        return;
    }
    for (AGPIppCommand* command : mOptionCommands) {
        DisplayAPI::MenuCommand* menuCommand = command->getMenuCommand();
        if (menuCommand == nullptr) {
            continue;
        }
        if (mType == EXCLUSIVE || mType == MULTIPLE) {
            mList->addCommand(menuCommand);
            continue;
        }
        if (mOptionsContextMenu == nullptr) {
            initContextMenuOptions();
            mOptionsEntryInserted = true;
        }
        mOptionsContextMenu->addCommand(menuCommand, nullptr, false);
    }
}

void AGPIppList::initContextMenuOptions() {
    mOptionsContextMenu = new DisplayAPI::ContextMenu(true);
    mOptionsContextMenu->setOwnerId(mAGPId);
    if (DisplayAPI::CommandListener* listener = menuListener()) {
        mOptionsContextMenu->addCommandListener(listener);
    }
    auto* entry =
        new DisplayAPI::ListItem(TranslationInfo("list.options", AGPPhoneletManager::getTranslator()), true);
    entry->setActiveFontColour(true);
    mList->insert(entry, 0);
    entry->setActiveFontColour(false);
}

void AGPIppList::initContextMenuItems() {
    mItemContextMenu = new DisplayAPI::ContextMenu(true);
    mItemContextMenu->setOwnerId(mAGPId);
    if (DisplayAPI::CommandListener* listener = menuListener()) {
        mItemContextMenu->addCommandListener(listener);
    }
}

void AGPIppList::initPopupConfirm() {
    mPopupConfirm = new DisplayAPI::PopupConfirm(true);
    mPopupConfirm->setOwnerId(mAGPId);
    if (DisplayAPI::CommandListener* listener = menuListener()) {
        mPopupConfirm->addCommandListener(listener);
    }
    mPopupConfirm->setState(1);
}

// A plain list whose only item command is its own "SELECT" needs no menu: Ok already selects.
void AGPIppList::addItemCommands() {
    if (mList == nullptr) {
        return;
    }
    if (mDefaultSelectCommand != nullptr && mItemCommands.size() == 1 && mOptionCommands.empty()) {
        return;
    }
    const bool softKeys = hasSoftKeyBar();
    for (AGPIppCommand* command : mItemCommands) {
        DisplayAPI::MenuCommand* menuCommand = command->getMenuCommand();
        if (menuCommand == nullptr) {
            continue;
        }
        if (mItemContextMenu == nullptr) {
            initContextMenuItems();
        }
        mItemContextMenu->addCommand(menuCommand, nullptr, false);
        if (!mItemArrowsShown) {
            for (DisplayAPI::ListItem* item : mList->getListItems()) {
                item->enableContextMenuArrow(true);
            }
            mItemArrowsShown = true;
        }
        if (softKeys && mType != PLAIN) {
            mList->addItemCommand(menuCommand);
        }
    }
}

void AGPIppList::addPopupCommands() {
    if (mList == nullptr) {
        return;
    }
    for (AGPIppCommand* command : mPopupCommands) {
        if (command->getMenuCommand() == nullptr) {
            continue;
        }
        if (mPopupConfirm == nullptr) {
            initPopupConfirm();
        }
        mPopupConfirm->addCommand(command->getMenuCommand());
    }
}

void AGPIppList::performCancel() {
    if (mList == nullptr) {
        return;
    }
    std::list<bool> flags;
    int firstTicked = -1;
    int row = 0;
    for (AGPOption* option : getShownOptions()) {
        if (option->getListItem() == nullptr) {
            continue;
        }
        const bool ticked = option->getAGPSelected() == AGPOption::SELECTED_TRUE;
        flags.push_back(ticked);
        if (ticked && firstTicked < 0) {
            firstTicked = row;
        }
        ++row;
    }
    switch (mType) {
    case EXCLUSIVE:
        if (firstTicked >= 0) {
            mList->setSelectedIndex(firstTicked);
        } else if (mList->size() > 0) {
            mList->setSelectedIndex(0);
        }
        break;
    case PLAIN:
        mList->setSelectedIndex(firstTicked >= 0 ? firstTicked + (mOptionsEntryInserted ? 1 : 0) : 0);
        break;
    case MULTIPLE:
        static_cast<DisplayAPI::MultipleList*>(mList)->setSelectedFlags(flags);
        if (mList->size() > 0) {
            mList->setSelectedIndex(0);
        }
        break;
    }
}

void AGPIppList::selectItem(std::multimap<std::string, std::string>& keyValues) {
    if (mList == nullptr) {
        return;
    }
    std::vector<AGPOption*> options = getOptions();
    if (mType == MULTIPLE) {
        const std::list<bool> flags = static_cast<DisplayAPI::MultipleList*>(mList)->getSelectedFlags();
        if (flags.size() != options.size()) {
            return;
        }
        auto flag = flags.begin();
        for (AGPOption* option : options) {
            std::multimap<std::string, std::string> scratch;
            option->gatherKeyValues(scratch);
            if (!scratch.empty()) {
                std::pair<std::string, std::string> pair = *scratch.begin();
                if (!*flag) {
                    pair.second = "not_" + pair.second;
                }
                keyValues.insert(pair);
            }
            ++flag;
        }
        return;
    }
    const int index = mList->getSelectedIndex() - (mOptionsEntryInserted ? 1 : 0);
    if (index >= 0 && static_cast<size_t>(index) < options.size()) {
        options[static_cast<size_t>(index)]->gatherKeyValues(keyValues);
    }
}

AGPIppCommand* AGPIppList::getSelectedIppCommand(DisplayAPI::Command* command) {
    if (command == nullptr) {
        return nullptr;
    }
    for (AGPIppCommand* candidate : mCommands) {
        if (candidate->getMenuCommand() == command) {
            return candidate;
        }
    }
    return nullptr;
}

void AGPIppList::showList(AGPMessage::MessageType type, bool bringToFront) {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr && mList != nullptr) {
        gui->showDisplayableList(mList, mQueueID, type, bringToFront);
    }
}

void AGPIppList::showMenu(DisplayAPI::Displayable* menu, AGPMessage::MessageType type, bool bringToFront) {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        gui->showDisplayable(menu, 0, type, bringToFront);
    }
}

void AGPIppList::resetMenuState() {
    mContextMenuShown = false;
    mPopupMenuDisplayed = false;
}

void AGPIppList::send(AGPIppCommand* command, std::multimap<std::string, std::string>& keyValues,
                      AGPMessage::MessageType type, bool bringToFront) {
    if (mPopupMenuDisplayed || !isContextMenuDisplayed()) {
        showList(type, bringToFront);
    }
    if (command != nullptr) {
        command->gatherKeyValues(keyValues);
    }
    reReadFromUrl(keyValues);
    resetMenuState();
}

void AGPIppList::processMessage(AGPMessage& message) {
    AGP_LOG(5, "AGPIppList::processMessage Type:%s\n", message.getMessageTypeString().c_str());
    if (mList == nullptr) {
        AGP_LOG(
            6,
            "Command called on the AGPIppList with deleted DisplayAPI objects - command will be discarded\n");
        return;
    }
    if (isRemoteTrace()) {
        commandRemoteTrace("Receive message on a IppList: message=", message);
    }
    AGPIppCommand* command = nullptr;
    AGPMessage::MessageType type = message.type;
    DisplayAPI::Command* widgetCommand = message.command;
    const bool fromTimer = message.type == AGPMessage::Command_Timer;
    if (fromTimer) {
        command = mTimerCommand;
        if (command == nullptr) {
            AGP_LOG(6,
                    "AGPIppList::processMessage() AGPIppCommand associated to the Timer command not found");
            return;
        }
        type = command->getMessageType();
        widgetCommand = command->getMenuCommand();
    } else {
        command = getSelectedIppCommand(message.command);
    }
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    const bool bringToFront = message.bringToFront;
    std::multimap<std::string, std::string> keyValues;

    switch (type) {
    case AGPMessage::Command_Back:
        handleBackCommand(widgetCommand, bringToFront);
        break;
    case AGPMessage::Command_Cancel:
        if (!fromTimer) {
            showList(type, bringToFront);
            resetMenuState();
        }
        performCancel();
        break;
    case AGPMessage::Command_Exit:
        if (command != nullptr) {
            command->gatherKeyValues(keyValues);
        }
        exitURL(keyValues);
        break;
    case AGPMessage::Command_OK:
        if (mList->getSelectedIndex() == 0 && mOptionsContextMenu != nullptr) {
            mContextMenuShown = true;
            mPopupMenuDisplayed = false;
            showMenu(mOptionsContextMenu, type, bringToFront);
            break;
        }
        if (mSelectCommand != nullptr) {
            command = mSelectCommand;
        } else {
            for (AGPIppCommand* candidate : mItemCommands) {
                if (candidate->getAGPType() == AGPIppCommand::SELECT) {
                    command = candidate;
                    break;
                }
            }
        }
        selectItem(keyValues);
        send(command, keyValues, type, bringToFront);
        break;
    case AGPMessage::Command_Select:
        selectItem(keyValues);
        send(command, keyValues, type, bringToFront);
        break;
    case AGPMessage::Command_Update:
        send(command, keyValues, type, bringToFront);
        break;
    case AGPMessage::Command_Screen:
        showList(type, bringToFront);
        resetMenuState();
        if (command != nullptr && command->getChildByType(AGPObjectTypeInfo::ti_ScreenID) != nullptr &&
            gui != nullptr) {
            gui->commandShowScreenID(command->getScreenID(), mQueueID, bringToFront);
        }
        break;
    case AGPMessage::Command_Right: {
        const bool softKeys = hasSoftKeyBar();
        if (softKeys && (gui == nullptr || gui->getDisplay() == nullptr ||
                         !gui->getDisplay()->isCurrentForKeyEvents(message.displayable))) {
            break;
        }
        if (mType == PLAIN || !softKeys) {
            DisplayAPI::ContextMenu* menu = mList->getSelectedIndex() == 0 && mOptionsContextMenu != nullptr
                                                ? mOptionsContextMenu
                                                : mItemContextMenu;
            // Without any menu there is nothing to open; showing nothing would blank the screen.
            if (menu == nullptr) {
                break;
            }
            showMenu(menu, type, bringToFront);
            mContextMenuShown = true;
            mPopupMenuDisplayed = false;
        } else if (mContextMenuShown) {
            mPopupMenuDisplayed = false;
        } else {
            mContextMenuShown = true;
            showList(type, bringToFront);
            mPopupMenuDisplayed = false;
        }
        break;
    }
    case AGPMessage::Command_Skip_Back:
    case AGPMessage::Command_Dismiss_context_menu:
        showList(type, bringToFront);
        resetMenuState();
        break;
    case AGPMessage::Command_Action:
        if (command != nullptr) {
            command->invokeAction();
        }
        resetMenuState();
        showList(type, bringToFront);
        break;
    default:
        break;
    }
}

void AGPIppList::handleBackCommand(DisplayAPI::Command* command, bool bringToFront) {
    AGP_LOG(5,
            "handleBackCommand() selectedCommand=%p mpPopupConfirm=%p mPopupConfirmVisible=%d "
            "mContextMenuShown=%s",
            static_cast<void*>(command), static_cast<void*>(mPopupConfirm), mPopupMenuDisplayed ? 1 : 0,
            mContextMenuShown ? "true" : "false");
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    AGPIppCommand* selected = getSelectedIppCommand(command);
    if (selected != nullptr) {
        showList(AGPMessage::Command_Back, bringToFront);
        if (gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, bringToFront);
        }
        resetMenuState();
        return;
    }
    if (mPopupMenuDisplayed) {
        showList(AGPMessage::Command_Back, bringToFront);
        resetMenuState();
        return;
    }
    if (mContextMenuShown && !hasSoftKeyBar()) {
        AGP_LOG(5, "handleBackCommand() hiding context menu");
        showList(AGPMessage::Command_Back, bringToFront);
        resetMenuState();
        return;
    }
    if (mPopupConfirm == nullptr) {
        return;
    }
    if (mPopupCommands.size() == 1 && mPopupCommands.front()->getAGPType() == AGPIppCommand::BACK) {
        AGP_LOG(
            5,
            "handleBackCommand() triggering screen back due to only BACK command existing on PopupConfirm");
        if (gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, bringToFront);
        }
        resetMenuState();
        return;
    }
    AGP_LOG(5, "handleBackCommand() showing popup confirm");
    showMenu(mPopupConfirm, AGPMessage::Command_Back, bringToFront);
    mPopupMenuDisplayed = true;
    mContextMenuShown = false;
}

void AGPIppList::processNotifyEvent(AGPIppCommand::AGPEvent event) {
    runObservedEventCommand(event);
}

void AGPIppList::addSelectedPairs(std::multimap<std::string, std::string>& keyValues) {
    selectItem(keyValues);
}

DisplayAPI::Displayable* AGPIppList::getDisplayAPIDisplayable() {
    return mList;
}

void AGPIppList::setHighlight(bool on) {
    if (mList != nullptr) {
        mList->setSelectionHighlight(on);
    }
}

void AGPIppList::restoreFocusAndHighlight() {
    if (mList != nullptr) {
        mList->restoreFocusAndShowHighlight();
    }
}

bool AGPIppList::isContextMenuDisplayed() {
    if (mContextMenuShown) {
        return true;
    }
    return mType != PLAIN && mList != nullptr && mList->isContextMenuDisplayed();
}

void AGPIppList::pushRequestIndication() {
    resetMenuState();
}

void AGPIppList::hideElement() {
    saveListState();
    deleteDisplayElements();
}

void AGPIppList::reDisplayElement2ndRound() {
    mItemArrowsShown = false;
    addOptionComamnds();
    addItemCommands();
    addPopupCommands();
    performCancel();
    retrieveListState();
}

void AGPIppList::saveListState() {
    if (mList == nullptr) {
        return;
    }
    if (mType == MULTIPLE) {
        mSavedFlags = static_cast<DisplayAPI::MultipleList*>(mList)->getSelectedFlags();
    } else {
        mSavedIndex = mList->getSelectedIndex();
    }
}

void AGPIppList::retrieveListState() {
    if (mList == nullptr) {
        return;
    }
    if (mType == MULTIPLE) {
        static_cast<DisplayAPI::MultipleList*>(mList)->setSelectedFlags(mSavedFlags);
    } else {
        if (mSavedIndex >= 0) {
            mList->setSelectedIndex(mSavedIndex);
        }
        mSavedIndex = -1;
    }
}

void AGPIppList::deleteDisplayElements() {
    if (menuListener() == nullptr) {
        return;
    }
    destroyWidgets();
}

void AGPIppList::destroyWidgets() {
    DisplayAPI::CommandListener* listener = menuListener();
    DisplayAPI::Displayable* widgets[] = {mItemContextMenu, mOptionsContextMenu, mPopupConfirm, mList};
    for (DisplayAPI::Displayable* widget : widgets) {
        if (widget != nullptr && listener != nullptr) {
            widget->removeCommandListener(listener);
        }
        delete widget;
    }
    mItemContextMenu = nullptr;
    mOptionsContextMenu = nullptr;
    mPopupConfirm = nullptr;
    mList = nullptr;
}

void AGPIppList::setTickerElement(AGPIppTicker& ticker) {
    if (mList != nullptr && ticker.getTicker() != nullptr) {
        mList->setTicker(ticker.getTicker());
    }
}
