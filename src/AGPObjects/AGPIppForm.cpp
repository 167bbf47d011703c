// The full-screen form: a title and labelled input items, with options, popup confirm and alert.
#include "AGPIppForm.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppForm.cpp"

#include <algorithm>
#include <string_view>

#include "AGPCommandListener.h"
#include "AGPDisplayItemIfc.h"
#include "AGPGUIHandler.h"
#include "AGPIppChoiceGroup.h"
#include "AGPIppGauge.h"
#include "AGPIppItem.h"
#include "AGPIppTextField.h"
#include "AGPIppTicker.h"
#include "AGPItemStateListener.h"
#include "AGPKeyValueProviderIfc.h"
#include "AGPLog.h"
#include "AGPMenuCommandListener.h"
#include "AGPObjectMap.h"
#include "AGPPhoneletManager.h"
#include "AGPUtils.h"
#include "display/Alert.h"
#include "display/ChoiceGroup.h"
#include "display/Command.h"
#include "display/Display.h"
#include "display/Form.h"
#include "display/Item.h"
#include "display/MenuCommand.h"
#include "display/PopupConfirm.h"
#include "display/SelectionField.h"
#include "text/TranslationInfo.h"

using namespace std::string_view_literals;

namespace {

bool isItemKind(AGPObjectTypeInfo::AGPObjectType type) {
    switch (type) {
    case AGPObjectTypeInfo::ti_IppButton:
    case AGPObjectTypeInfo::ti_IppChoiceGroup:
    case AGPObjectTypeInfo::ti_IppDateField:
    case AGPObjectTypeInfo::ti_IppGauge:
    case AGPObjectTypeInfo::ti_IppImageItem:
    case AGPObjectTypeInfo::ti_IppItem:
    case AGPObjectTypeInfo::ti_IppSpacer:
    case AGPObjectTypeInfo::ti_IppStringItem:
    case AGPObjectTypeInfo::ti_IppTextField:
        return true;
    default:
        return false;
    }
}

bool hasSoftKeyBar() {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    return gui != nullptr && gui->getDisplay() != nullptr && gui->getDisplay()->hasSoftKeyBar() != 0;
}

AGPIppItem* asItem(AGPCommonBase* element) {
    return element != nullptr && element->getAGPObjectType() == AGPObjectTypeInfo::ti_IppItem
               ? static_cast<AGPIppItem*>(element)
               : nullptr;
}

bool isDisplayOnDefault(AGPIppCommand::AGPDisplayOn displayOn) {
    return displayOn != AGPIppCommand::LISTITEM && displayOn != AGPIppCommand::NONE;
}

} // namespace

AGPIppForm::AGPIppForm()
    : mTitleCount(0, 1), mUrlCount(0, 1), mChoiceCount(0, -1), mItemCount(0), mProportion(PROPORTION_DEFAULT),
      mForm(nullptr), mOptionsField(nullptr), mPopupConfirm(nullptr), mAlert(nullptr),
      mAlertCancelCommand(nullptr), mAlertItem(nullptr), mHasBack(false), mPopupMenuDisplayed(false),
      mSoftKeyFormOptions(nullptr) {
    registerElement();
}

AGPIppForm::~AGPIppForm() {
    unregisterElement();
    deleteDisplayElements();
}

bool AGPIppForm::addChild(AGPCommonBase& child) {
    const AGPObjectType type = child.getAGPObjectType();
    if (type == AGPObjectTypeInfo::ti_Title) {
        return addAGPTitle(child);
    }
    if (type == AGPObjectTypeInfo::ti_Url) {
        return addAGPUrl(child);
    }
    if (isItemKind(type)) {
        return addChoice(child);
    }
    return false;
}

bool AGPIppForm::addAttribute(std::string& name, std::string& value) {
    if (name == "ItemCount"sv) {
        mItemCount = parseAGPItemCount(value);
        return true;
    }
    if (name == "Proportion"sv) {
        mProportion = parseAGPProportion(value);
        return true;
    }
    return false;
}

std::uint32_t AGPIppForm::parseAGPItemCount(const std::string& text) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        return 0;
    }
    return static_cast<std::uint32_t>(number);
}

AGPIppForm::AGPProportion AGPIppForm::parseAGPProportion(const std::string& text) {
    static const char* const names[] = {"50_50", "60_40", "75_25", "25_75", "15_85", "0_100"};
    for (int i = 0; i < 6; ++i) {
        if (text == names[i]) {
            return static_cast<AGPProportion>(i + 1);
        }
    }
    return PROPORTION_DEFAULT;
}

void AGPIppForm::initializeElement() {
    createAndInitDisplayElements();
}

void AGPIppForm::reDisplayElement() {
    createAndInitDisplayElements();
}

void AGPIppForm::createAndInitDisplayElements() {
    deleteDisplayElements();
    mForm = new DisplayAPI::Form(static_cast<DisplayAPI::Form::FormProportionType>(mProportion));
    mForm->setOwnerId(mAGPId);
    mForm->setAlternativeCommandHandling(false);
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        mForm->addCommandListener(gui->getCommandListener());
        mForm->addItemStateListener(gui->getItemStateListener());
    }
    mForm->setCurrentLanguageFixed();
}

void AGPIppForm::createAndInitDisplayElements2ndRound() {
    if (mForm == nullptr) {
        return;
    }
    std::uint32_t appended = 0;
    for (AGPCommonBase* child : mChildren) {
        const AGPObjectType type = child->getAGPObjectType();
        if (type == AGPObjectTypeInfo::ti_Title) {
            mForm->setTitle(child->getContent());
            continue;
        }
        if (!isItemKind(type)) {
            continue;
        }
        if (appended >= mItemCount) {
            AGP_LOG(6, "AGPIppForm: appending failed %s, count exceeded",
                    AGPObjectTypeInfo::getTypeNameRef(type).c_str());
            continue;
        }
        auto* itemIfc = dynamic_cast<AGPDisplayItemIfc*>(child);
        DisplayAPI::Item* widget = itemIfc != nullptr ? itemIfc->getDisplayItem() : nullptr;
        if (widget == nullptr) {
            AGP_LOG(6, "AGPIppForm: DisplayItemIfc->getDisplayItem() is NULL");
            continue;
        }
        if (type == AGPObjectTypeInfo::ti_IppChoiceGroup) {
            addChoiceGroup(widget);
        } else if (AGPIppItem* item = asItem(child)) {
            AGPCommonBase* display = item->findDisplayItem();
            if (display != nullptr && display->getAGPObjectType() == AGPObjectTypeInfo::ti_IppChoiceGroup) {
                addChoiceGroup(widget);
            } else {
                mForm->append(widget);
            }
            if (item->hasBack()) {
                mHasBack = true;
            }
        } else {
            mForm->append(widget);
        }
        ++appended;
    }
}

// A popup group's widget is a selection field, appended like any item; radio buttons and check
// boxes go in as a choice group.
void AGPIppForm::addChoiceGroup(DisplayAPI::Item* group) {
    if (auto* choiceGroup = dynamic_cast<DisplayAPI::ChoiceGroup*>(group)) {
        mForm->appendChoiceGroup(choiceGroup);
    } else {
        mForm->append(group);
    }
}

void AGPIppForm::distribute(AGPIppCommand* command) {
    switch (command->getAGPType()) {
    case AGPIppCommand::BACK:
        mPopupCommands.push_back(command);
        mOptionCommands.push_back(command);
        break;
    case AGPIppCommand::CANCEL:
    case AGPIppCommand::EXIT:
        mPopupCommands.push_back(command);
        break;
    default:
        mOptionCommands.push_back(command);
        break;
    }
}

void AGPIppForm::setCommandElement(AGPIppCommand& command) {
    const AGPIppCommand::AGPDisplayOn displayOn = command.getAGPDisplayOn();
    if (displayOn == AGPIppCommand::LISTITEM || displayOn == AGPIppCommand::BOTH) {
        for (AGPCommonBase* child : mChildren) {
            if (AGPIppItem* item = asItem(child)) {
                item->setCommandElement(command);
            }
        }
    }
    if (displayOn == AGPIppCommand::NONE) {
        observeEventCommand(&command);
    } else if (displayOn != AGPIppCommand::LISTITEM) {
        distribute(&command);
    }
    setTimerCommand(&command);
}

void AGPIppForm::findAndAddCommandsDisplayedOn(std::vector<AGPIppCommand*>& commands,
                                               const AGPIppCommand::AGPDisplayOn* values, int count) {
    for (AGPCommonBase* child : mChildren) {
        if (AGPIppItem* item = asItem(child)) {
            item->findAndAddCommandsDisplayedOn(commands, values, count);
        }
    }
}

void AGPIppForm::processElement() {
    createAndInitDisplayElements2ndRound();
    std::vector<AGPIppCommand*> shown;
    const AGPIppCommand::AGPDisplayOn shownValues[] = {AGPIppCommand::DISPLAYON_DEFAULT, AGPIppCommand::BOTH};
    findAndAddCommandsDisplayedOn(shown, shownValues, 2);
    for (AGPIppCommand* command : shown) {
        if (isDisplayOnDefault(command->getAGPDisplayOn())) {
            distribute(command);
        }
    }
    std::vector<AGPIppCommand*> listItem;
    const AGPIppCommand::AGPDisplayOn listItemValue[] = {AGPIppCommand::LISTITEM};
    findAndAddCommandsDisplayedOn(listItem, listItemValue, 1);
    for (AGPIppCommand* command : listItem) {
        if (command->getAGPType() == AGPIppCommand::BACK) {
            mPopupCommands.insert(mPopupCommands.begin(), command);
        }
    }
    std::vector<AGPIppCommand*> events;
    const AGPIppCommand::AGPDisplayOn noneValue[] = {AGPIppCommand::NONE};
    findAndAddCommandsDisplayedOn(events, noneValue, 1);
    for (AGPIppCommand* command : events) {
        observeEventCommand(command);
    }
    std::stable_sort(mOptionCommands.begin(), mOptionCommands.end(), AGPIppCommand::compareByPriority);
    addOptionComamnds();
    std::sort(mPopupCommands.begin(), mPopupCommands.end(), AGPIppCommand::compareByPriority);
    addPopupCommands();
}

void AGPIppForm::reDisplayElement2ndRound() {
    createAndInitDisplayElements2ndRound();
    addOptionComamnds();
    addPopupCommands();
}

void AGPIppForm::addOptionComamnds() {
    if (mForm == nullptr) {
        return;
    }
    for (AGPIppCommand* command : mOptionCommands) {
        setTimerCommand(command);
        if (mOptionsField == nullptr) {
            initOptionsField(*command);
        }
        mOptionsField->appendSelection(command->getMenuCommand());
    }
    updateSoftKeyFormOptions(mOptionCommands);
    if (hasSoftKeyBar()) {
        mForm->setFormOptions(softKeyFormOptions());
    }
}

void AGPIppForm::initOptionsField(AGPIppCommand& command) {
    TranslationInfo label("selectionfield.options", AGPPhoneletManager::getTranslator());
    mOptionsField = new DisplayAPI::SelectionField(&label, command.getMenuCommand(), mForm, true);
    mOptionsField->setOwnerId(mAGPId);
    mOptionsField->setInformAppOnOk(true);
    if (hasSoftKeyBar()) {
        mOptionsField->setContextMenuSuppressed();
    }
    mForm->insertItem(mOptionsField, 0);
    mForm->setSelected(mOptionsField);
}

DisplayAPI::SelectionField* AGPIppForm::softKeyFormOptions() {
    if (hasSoftKeyBar() && mSoftKeyFormOptions == nullptr && mForm != nullptr) {
        DisplayAPI::MenuCommand* first =
            mOptionCommands.empty() ? nullptr : mOptionCommands.front()->getMenuCommand();
        mSoftKeyFormOptions = new DisplayAPI::SelectionField(nullptr, first, mForm, true);
    }
    return mSoftKeyFormOptions;
}

void AGPIppForm::addToSoftKeyFormOptions(DisplayAPI::MenuCommand* command) {
    if (hasSoftKeyBar() && softKeyFormOptions() != nullptr) {
        mSoftKeyFormOptions->appendSelection(command);
    }
}

void AGPIppForm::updateSoftKeyFormOptions(const std::vector<AGPIppCommand*>& commands) {
    if (!hasSoftKeyBar() || mForm == nullptr) {
        return;
    }
    AGP_LOG(6, "AGPIppForm::updateSoftKeyFormOptions() clearing soft key form options");
    DisplayAPI::SelectionField* options = softKeyFormOptions();
    if (options == nullptr) {
        return;
    }
    options->clearSelections();
    for (AGPIppCommand* command : commands) {
        options->appendSelection(command->getMenuCommand());
    }
    mForm->setFormOptions(options);
}

void AGPIppForm::initPopupConfirm() {
    mPopupConfirm = new DisplayAPI::PopupConfirm(true);
    mPopupConfirm->setState(1);
    mPopupConfirm->setOwnerId(mAGPId);
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        mPopupConfirm->addCommandListener(gui->getMenuCommandListener());
        mPopupConfirm->addItemStateListener(gui->getItemStateListener());
    }
}

void AGPIppForm::addPopupCommands() {
    if (mForm == nullptr) {
        return;
    }
    for (AGPIppCommand* command : mPopupCommands) {
        setTimerCommand(command);
        if (mPopupConfirm == nullptr) {
            initPopupConfirm();
        }
        mPopupConfirm->addCommand(command->getMenuCommand());
    }
}

AGPCommonBase* AGPIppForm::findFocusedElement() {
    DisplayAPI::Item* selected = mForm != nullptr ? mForm->getSelected() : nullptr;
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    if (selected == nullptr || map == nullptr) {
        return nullptr;
    }
    return map->getAGPObject(static_cast<AGPId>(selected->getOwnerId()));
}

bool AGPIppForm::isOptionsFieldFocused() {
    return mOptionsField != nullptr && mForm != nullptr && mForm->getSelected() == mOptionsField;
}

AGPIppCommand* AGPIppForm::getSelectedIppCommand() {
    if (mPopupMenuDisplayed && mPopupConfirm != nullptr) {
        const int index = mPopupConfirm->getSelectedIndex();
        if (index < 0 || static_cast<size_t>(index) >= mPopupCommands.size()) {
            return nullptr;
        }
        return mPopupCommands[static_cast<size_t>(index)];
    }
    if (!isOptionsFieldFocused()) {
        return nullptr;
    }
    const int index = mOptionsField->getSelectionIndex();
    if (index < 0 || static_cast<size_t>(index) >= mOptionCommands.size()) {
        return nullptr;
    }
    return mOptionCommands[static_cast<size_t>(index)];
}

void AGPIppForm::showForm(AGPMessage::MessageType type, bool bringToFront) {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr && mForm != nullptr) {
        gui->showDisplayableForm(mForm, mQueueID, type, bringToFront);
    }
}

bool AGPIppForm::isMessageValidForChangingScreen(const AGPMessage& message) {
    if (message.type == AGPMessage::Command_OK || message.type == AGPMessage::Command_Item_state_changed ||
        message.type == AGPMessage::Command_Timer) {
        return true;
    }
    return hasSoftKeyBar() && message.type == AGPMessage::Command_Screen;
}

void AGPIppForm::processMessage(AGPMessage& message) {
    if (mForm == nullptr) {
        AGP_LOG(6, "Command called on the AGPIppForm with deleted DisplayAPI objects - command will be "
                   "discarded\n");
        return;
    }
    AGPCommonBase* focused = findFocusedElement();
    if (isRemoteTrace()) {
        commandRemoteTrace("Receive message on a IppForm: message=", message);
    }

    AGPIppCommand* command = nullptr;
    bool resolved = false;
    if (message.type == AGPMessage::Command_Screen) {
        if (isOptionsFieldFocused() && hasSoftKeyBar()) {
            for (AGPIppCommand* candidate : mOptionCommands) {
                if (candidate->getMenuCommand() == message.command) {
                    command = candidate;
                }
            }
            resolved = command != nullptr;
        }
    } else if (message.type == AGPMessage::Command_OK ||
               message.type == AGPMessage::Command_Item_state_changed) {
        if (message.displayable != nullptr &&
            (message.displayable == mOptionsField || message.displayable == mForm)) {
            if (isOptionsFieldFocused()) {
                command = getSelectedIppCommand();
                resolved = command != nullptr;
            }
        } else if (AGPIppItem* item = asItem(focused)) {
            command = item->getDefaultIppCommand();
            resolved = command != nullptr;
        }
    } else if (message.type == AGPMessage::Command_Timer) {
        command = mTimerCommand;
        resolved = command != nullptr;
    }
    AGPMessage::MessageType type = message.type;
    DisplayAPI::Command* widgetCommand = message.command;
    if (resolved) {
        type = command->getMessageType();
        widgetCommand = command->getMenuCommand();
    } else {
        command = getSelectedIppCommand();
    }

    if (isOptionsFieldFocused() && isContextMenuDisplayed() && message.type != AGPMessage::Command_Timer) {
        return;
    }

    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    const bool bringToFront = message.bringToFront;
    std::multimap<std::string, std::string> keyValues;
    switch (type) {
    case AGPMessage::Command_Select:
    case AGPMessage::Command_Update: {
        bool valid = true;
        if (type == AGPMessage::Command_Select) {
            valid = gatherKeyValues(keyValues, message);
        } else {
            gatherUpdateCommandKeyValues(keyValues, message);
        }
        if (command != nullptr) {
            command->gatherKeyValues(keyValues);
        }
        showForm(type, bringToFront);
        if (valid) {
            reReadFromUrl(keyValues);
        } else {
            showAlert("Password validation failure!", "Passwords entered don't match.", nullptr,
                      bringToFront);
        }
        break;
    }
    case AGPMessage::Command_Exit:
        if (command != nullptr) {
            command->gatherKeyValues(keyValues);
        }
        exitURL(keyValues);
        break;
    case AGPMessage::Command_Back:
        handleBackCommand(widgetCommand, bringToFront);
        break;
    case AGPMessage::Command_Cancel:
        if (message.command != nullptr && message.command == mAlertCancelCommand) {
            showForm(type, bringToFront);
            if (mAlertItem != nullptr) {
                mAlertItem->rollback();
            }
            destroyAlert();
        } else {
            handleCancelCommand();
            showForm(type, bringToFront);
            mPopupMenuDisplayed = false;
        }
        break;
    case AGPMessage::Command_Action:
        if (command != nullptr) {
            command->invokeAction();
        }
        break;
    case AGPMessage::Command_OK: {
        AGPIppItem* item = asItem(focused);
        AGPCommonBase* display = item != nullptr ? item->findDisplayItem() : nullptr;
        if (focused != nullptr && focused->getAGPObjectType() == AGPObjectTypeInfo::ti_IppButton) {
            performOkPressedOnButton(focused, keyValues);
        } else if (display != nullptr && display->getAGPObjectType() == AGPObjectTypeInfo::ti_IppButton) {
            performOkPressedOnButton(display, keyValues);
        } else if (item != nullptr) {
            item->processMessage(message);
        }
        break;
    }
    case AGPMessage::Command_Screen:
        if (message.command != nullptr &&
            message.command == DisplayAPI::Form::CURRENT_ITEM_CHANGED_COMMAND()) {
            AGP_LOG(6, "AGPIppForm: CURRENT_ITEM_CHANGED_COMMAND received");
            if (isOptionsFieldFocused()) {
                updateSoftKeyFormOptions(mOptionCommands);
            } else if (AGPIppItem* item = asItem(focused)) {
                updateSoftKeyFormOptions(item->getContextMenuCommands());
            } else if (focused != nullptr) {
                updateSoftKeyFormOptions(std::vector<AGPIppCommand*>());
            }
        } else if (command != nullptr) {
            AGP_LOG(6, "AGPIppForm: Inner Command_Screen received of type '%s'",
                    message.getMessageTypeString().c_str());
            if (isMessageValidForChangingScreen(message) && gui != nullptr) {
                gui->commandShowScreenID(command->getScreenID(), mQueueID, bringToFront);
            }
        } else if (focused != nullptr && focused != this) {
            auto* menuCommand = dynamic_cast<DisplayAPI::MenuCommand*>(message.command);
            if (menuCommand != nullptr) {
                message.type = static_cast<AGPMessage::MessageType>(menuCommand->getId());
                focused->processMessage(message);
            }
        }
        break;
    case AGPMessage::Command_Right:
        if (AGPIppItem* item = asItem(focused)) {
            AGPMessage ok;
            ok.type = AGPMessage::Command_OK;
            item->processMessage(ok);
        }
        break;
    case AGPMessage::Command_Dismiss_context_menu:
        showForm(type, bringToFront);
        break;
    case AGPMessage::Command_Item_state_changed:
        break;
    default:
        if (focused != nullptr && focused != this) {
            focused->processMessage(message);
        }
        break;
    }
}

void AGPIppForm::addProviderPairs(AGPCommonBase* element,
                                  std::multimap<std::string, std::string>& keyValues) {
    if (auto* provider = dynamic_cast<AGPKeyValueProviderIfc*>(element)) {
        provider->gatherKeyValues(keyValues);
    }
}

bool AGPIppForm::gatherKeyValues(std::multimap<std::string, std::string>& keyValues, AGPMessage& message) {
    std::vector<AGPCommonBase*> listed;
    std::vector<AGPIppTextField*> passwords;
    std::vector<AGPIppTextField*> confirmations;
    // Password fields wait for the comparison; every other field adds its pair at once.
    auto takeField = [&](AGPIppTextField* field, AGPCommonBase* provider) {
        if (field->getAGPConstraint() == AGPIppTextField::PASSWORD) {
            listed.push_back(provider);
            passwords.push_back(field);
        } else if (field->getAGPConstraint() == AGPIppTextField::VALIDATE) {
            listed.push_back(provider);
            confirmations.push_back(field);
        } else {
            addProviderPairs(provider, keyValues);
        }
    };
    for (AGPCommonBase* child : mChildren) {
        switch (child->getAGPObjectType()) {
        case AGPObjectTypeInfo::ti_IppTextField:
            takeField(static_cast<AGPIppTextField*>(child), child);
            break;
        case AGPObjectTypeInfo::ti_IppItem: {
            auto* item = static_cast<AGPIppItem*>(child);
            if (item->getChildByType(AGPObjectTypeInfo::ti_IppButton) == nullptr) {
                AGPCommonBase* field = item->getChildByType(AGPObjectTypeInfo::ti_IppTextField);
                if (field != nullptr) {
                    takeField(static_cast<AGPIppTextField*>(field), item);
                } else {
                    item->gatherKeyValues(keyValues);
                }
            }
            gatherCommandKeyValues(keyValues, message, item);
            break;
        }
        case AGPObjectTypeInfo::ti_IppChoiceGroup:
        case AGPObjectTypeInfo::ti_IppGauge:
        case AGPObjectTypeInfo::ti_IppDateField:
            addProviderPairs(child, keyValues);
            break;
        case AGPObjectTypeInfo::ti_IppButton: {
            auto* itemIfc = dynamic_cast<AGPDisplayItemIfc*>(child);
            if (itemIfc != nullptr && itemIfc->getDisplayItem() != nullptr &&
                itemIfc->getDisplayItem() == mForm->getSelected()) {
                addProviderPairs(child, keyValues);
            }
            break;
        }
        default:
            break;
        }
    }
    if (passwords.size() == 1 && confirmations.size() == 1) {
        const size_t passwordIndex = static_cast<size_t>(
            std::find_if(listed.begin(), listed.end(),
                         [&](AGPCommonBase* e) {
                             return e == passwords.front() ||
                                    e->getChildByType(AGPObjectTypeInfo::ti_IppTextField) ==
                                        passwords.front();
                         }) -
            listed.begin());
        if (passwords.front()->getDisplayItemsValue() == confirmations.front()->getDisplayItemsValue()) {
            addProviderPairs(listed[passwordIndex], keyValues);
            return true;
        }
        for (AGPCommonBase* provider : listed) {
            addProviderPairs(provider, keyValues);
        }
        return false;
    }
    for (AGPCommonBase* provider : listed) {
        addProviderPairs(provider, keyValues);
    }
    return true;
}

bool AGPIppForm::gatherCommandKeyValues(std::multimap<std::string, std::string>& keyValues,
                                        AGPMessage& message, AGPIppItem*& item) {
    if (item == nullptr || message.command == nullptr) {
        return false;
    }
    for (AGPCommonBase* child : item->getSequence()) {
        if (child->getAGPObjectType() == AGPObjectTypeInfo::ti_IppCommand &&
            static_cast<AGPIppCommand*>(child)->getMenuCommand() == message.command) {
            static_cast<AGPIppCommand*>(child)->gatherKeyValues(keyValues);
            return true;
        }
    }
    return false;
}

void AGPIppForm::gatherUpdateCommandKeyValues(std::multimap<std::string, std::string>& keyValues,
                                              AGPMessage& message) {
    for (AGPCommonBase* child : mChildren) {
        AGPIppItem* item = asItem(child);
        if (item != nullptr && gatherCommandKeyValues(keyValues, message, item)) {
            return;
        }
    }
}

void AGPIppForm::performOkPressedOnButton(AGPCommonBase* element,
                                          std::multimap<std::string, std::string>& keyValues) {
    if (element == nullptr || element->getAGPObjectType() != AGPObjectTypeInfo::ti_IppButton) {
        return;
    }
    addProviderPairs(element, keyValues);
    reReadFromUrl(keyValues);
}

void AGPIppForm::handleBackCommand(DisplayAPI::Command* command, bool bringToFront) {
    if (mPopupConfirm == nullptr) {
        return;
    }
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (mPopupMenuDisplayed) {
        const int index = mPopupConfirm->getSelectedIndex();
        const bool chosen = index >= 0 && static_cast<size_t>(index) < mPopupCommands.size() &&
                            mPopupCommands[static_cast<size_t>(index)]->getMenuCommand() == command;
        showForm(AGPMessage::Command_Back, bringToFront);
        if (chosen && gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, bringToFront);
        }
        mPopupMenuDisplayed = false;
        return;
    }
    if (mOptionsField != nullptr && command != nullptr && command == mOptionsField->getSelectionCommand()) {
        showForm(AGPMessage::Command_Back, bringToFront);
        if (gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, bringToFront);
        }
        return;
    }
    if (mPopupCommands.size() == 1 && mPopupCommands.front()->getAGPType() == AGPIppCommand::BACK) {
        if (gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, bringToFront);
        }
        mPopupMenuDisplayed = false;
        return;
    }
    if (gui != nullptr) {
        gui->showDisplayable(mPopupConfirm, 0, AGPMessage::Command_Back, bringToFront);
    }
    mPopupMenuDisplayed = true;
}

void AGPIppForm::handleCancelCommand() {
    for (AGPCommonBase* child : mChildren) {
        switch (child->getAGPObjectType()) {
        case AGPObjectTypeInfo::ti_IppItem:
        case AGPObjectTypeInfo::ti_IppTextField:
        case AGPObjectTypeInfo::ti_IppDateField:
        case AGPObjectTypeInfo::ti_IppChoiceGroup:
        case AGPObjectTypeInfo::ti_IppGauge:
            if (auto* itemIfc = dynamic_cast<AGPDisplayItemIfc*>(child)) {
                itemIfc->performCancel();
            }
            break;
        default:
            break;
        }
    }
}

void AGPIppForm::showAlert(std::string title, const std::string& text, AGPDisplayItemIfc* item,
                           bool bringToFront) {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (mAlert == nullptr) {
        mAlert = new DisplayAPI::Alert(title, "", nullptr, DisplayAPI::ALERT_WARNING);
        mAlert->setOwnerId(mAGPId);
        mAlertCancelCommand =
            new DisplayAPI::Command(TranslationInfo("command.cancel", AGPPhoneletManager::getTranslator()),
                                    DisplayAPI::Command::CANCEL);
        mAlertCancelCommand->setOwnerId(mAGPId);
        mAlert->addCommand(mAlertCancelCommand);
        if (gui != nullptr) {
            mAlert->addCommandListener(gui->getCommandListener());
        }
    }
    mAlertItem = item;
    mAlert->setTitle(title);
    mAlert->setText(text);
    if (gui != nullptr) {
        gui->showDisplayableAlert(mAlert, mQueueID, static_cast<unsigned long>(-1), AGPMessage::Unknown,
                                  bringToFront);
    }
}

void AGPIppForm::destroyAlert() {
    mAlertItem = nullptr;
    delete mAlert;
    mAlert = nullptr;
    delete mAlertCancelCommand;
    mAlertCancelCommand = nullptr;
}

void AGPIppForm::processNotifyEvent(AGPIppCommand::AGPEvent event) {
    processNotifyEventWithInputAlert(event, mAlert);
}

void AGPIppForm::addSelectedPairs(std::multimap<std::string, std::string>& keyValues) {
    if (mForm != nullptr) {
        AGPMessage empty;
        gatherKeyValues(keyValues, empty);
    }
}

void AGPIppForm::startTimer() {
    AGPDisplayable::startTimer();
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == AGPObjectTypeInfo::ti_IppGauge) {
            static_cast<AGPIppGauge*>(child)->initTimer();
            static_cast<AGPIppGauge*>(child)->startTimer();
        }
    }
    for (AGPCommonBase* child : mChildren) {
        if (AGPIppItem* item = asItem(child)) {
            item->startTimer();
        }
    }
}

void AGPIppForm::stopTimer() {
    AGPDisplayable::stopTimer();
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == AGPObjectTypeInfo::ti_IppGauge) {
            static_cast<AGPIppGauge*>(child)->stopTimer();
        }
    }
}

DisplayAPI::Displayable* AGPIppForm::getDisplayAPIDisplayable() {
    return mForm;
}

void AGPIppForm::setTickerElement(AGPIppTicker& ticker) {
    if (mForm != nullptr && ticker.getTicker() != nullptr) {
        mForm->setTicker(ticker.getTicker());
    }
}

void AGPIppForm::setHighlight(bool on) {
    if (mForm != nullptr) {
        mForm->setSelectionHighlight(on);
    }
}

void AGPIppForm::restoreFocusAndHighlight() {
    if (mForm != nullptr) {
        mForm->restoreFocusAndShowHighlight();
    }
}

bool AGPIppForm::isContextMenuDisplayed() {
    if (AGPIppItem* item = asItem(findFocusedElement())) {
        return item->isContextMenuDisplayed();
    }
    return mForm != nullptr && mForm->isContextMenuDisplayed();
}

void AGPIppForm::pushRequestIndication() {
    if (AGPIppItem* item = asItem(findFocusedElement())) {
        item->pushRequestIndication();
    }
    mPopupMenuDisplayed = false;
}

void AGPIppForm::hideElement() {
    deleteDisplayElements();
}

void AGPIppForm::deleteDisplayElements() {
    delete mPopupConfirm;
    mPopupConfirm = nullptr;
    destroyAlert();
    delete mForm;
    mForm = nullptr;
    mOptionsField = nullptr;
    mSoftKeyFormOptions = nullptr;
}
