// The full-screen text entry (or read-only text) element, shown in one widget text box.
#include "AGPIppTextBox.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppTextBox.cpp"

#include <algorithm>
#include <string_view>

#include "AGPCommandListener.h"
#include "AGPDataObserver.h"
#include "AGPDefault.h"
#include "AGPGUIHandler.h"
#include "AGPIppTicker.h"
#include "AGPItemStateListener.h"
#include "AGPKey.h"
#include "AGPLog.h"
#include "AGPMenuCommandListener.h"
#include "AGPObjectPool.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "AGPUtils.h"
#include "display/Alert.h"
#include "display/Command.h"
#include "display/MenuCommand.h"
#include "display/PopupConfirm.h"
#include "display/TextBox.h"
#include "text/TranslationInfo.h"

using namespace std::string_view_literals;

namespace {

AGPDefault* newDefault() {
    const AGPDefault* pooled = AGPObjectPool::getAGPDefault_NULL();
    return pooled != nullptr ? new AGPDefault(*pooled) : new AGPDefault("NULL");
}

} // namespace

AGPIppTextBox::AGPIppTextBox()
    : mTitleCount(0, 1), mTextCount(0, 1), mUrlCount(0, 1), mMaxSize(MAXSIZE_DEFAULT),
      mConstraint(CONSTRAINT_ANY), mPassword(PASSWORD_NO), mUneditable(UNEDITABLE_NO), mDefault(newDefault()),
      mKey(new AGPKey("null")), mExitAppearance(EXIT_NONE), mPopupMenuDisplayed(false),
      mPopupConfirm(nullptr), mTextBox(nullptr), mAlert(nullptr), mAlertCancelCommand(nullptr) {
    registerElement();
}

AGPIppTextBox::~AGPIppTextBox() {
    unregisterElement();
    deleteDisplayElements();
    delete mDefault;
    delete mKey;
}

bool AGPIppTextBox::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Title:
        return addAGPTitle(child);
    case AGPObjectTypeInfo::ti_Text:
        return addAGPText(child);
    case AGPObjectTypeInfo::ti_Url:
        return addAGPUrl(child);
    default:
        return false;
    }
}

bool AGPIppTextBox::addAttribute(std::string& name, std::string& value) {
    if (name == "MaxSize"sv) {
        mMaxSize = parseAGPMaxSize(value);
        return true;
    }
    if (name == "Constraint"sv) {
        mConstraint = parseAGPConstraint(value);
        return true;
    }
    if (name == "Password"sv) {
        mPassword = parseAGPPassword(value);
        return true;
    }
    if (name == "Uneditable"sv) {
        mUneditable = parseAGPUneditable(value);
        return true;
    }
    if (name == "ExitAppearance"sv) {
        mExitAppearance = parseAGPExitAppearance(value);
        return true;
    }
    if (name == "Default"sv) {
        delete mDefault;
        mDefault = AGPDefault::parseAGPDefault(value);
        return !AGPObjectPool::isPooled(*mDefault, AGPObjectPool::getAGPDefault_PARSE_FAILED());
    }
    if (name == "Key"sv) {
        delete mKey;
        mKey = AGPKey::parseAGPKey(value);
        return !AGPObjectPool::isPooled(*mKey, AGPObjectPool::getAGPKey_PARSE_FAILED());
    }
    return false;
}

bool AGPIppTextBox::addContent(std::string&) {
    return false;
}

// Only a whole, positive decimal number counts; anything else falls back to the default.
std::uint32_t AGPIppTextBox::parseAGPMaxSize(const std::string& text) {
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) {
        return MAXSIZE_DEFAULT;
    }
    const size_t firstDigit = text.find_first_not_of('0');
    if (firstDigit == std::string::npos) {
        return MAXSIZE_DEFAULT;
    }
    // More digits than the limit has can only be above it, and must not overflow.
    if (text.size() - firstDigit > 5) {
        return MAXSIZE_LIMIT;
    }
    const auto size = static_cast<std::uint32_t>(std::stoul(text.substr(firstDigit)));
    return std::min(size, MAXSIZE_LIMIT);
}

AGPIppTextBox::AGPConstraint AGPIppTextBox::parseAGPConstraint(const std::string& text) {
    if (text == "NUMERIC") {
        return NUMERIC;
    }
    if (text == "PASSWORD") {
        return PASSWORD;
    }
    if (text == "PHONENUMBER") {
        return PHONENUMBER;
    }
    if (text == "URL") {
        return URL;
    }
    if (text == "EMAILADDR") {
        return EMAILADDR;
    }
    return CONSTRAINT_ANY;
}

AGPIppTextBox::AGPPassword AGPIppTextBox::parseAGPPassword(const std::string& text) {
    return text == "YES" ? PASSWORD_YES : PASSWORD_NO;
}

AGPIppTextBox::AGPUneditable AGPIppTextBox::parseAGPUneditable(const std::string& text) {
    return text == "YES" ? UNEDITABLE_YES : UNEDITABLE_NO;
}

AGPIppTextBox::AGPExitAppearance AGPIppTextBox::parseAGPExitAppearance(const std::string& text) {
    if (text == "CONTEXT") {
        return EXIT_CONTEXT;
    }
    if (text == "BOTH") {
        return EXIT_BOTH;
    }
    return EXIT_NONE;
}

void AGPIppTextBox::initializeElement() {
    createAndInitDisplayElements();
}

// A second call (a redisplay without a hide before it) must not leak the widgets it replaces.
void AGPIppTextBox::reDisplayElement() {
    deleteDisplayElements();
    createAndInitDisplayElements();
}

void AGPIppTextBox::createAndInitDisplayElements() {
    if (mTextBox != nullptr) {
        deleteDisplayElements();
    }
    mTextBox = new DisplayAPI::TextBox(false);
    mTextBox->setOwnerId(mAGPId);
    mTextBox->setMaxSize(mMaxSize);
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        mTextBox->setCommandListener(gui->getMenuCommandListener());
    }
}

void AGPIppTextBox::setCommandElement(AGPIppCommand& command) {
    if (mTextBox == nullptr || command.getMenuCommand() == nullptr) {
        return;
    }
    switch (command.getAGPType()) {
    case AGPIppCommand::SELECT:
    case AGPIppCommand::UPDATE:
    case AGPIppCommand::SCREEN:
    case AGPIppCommand::ACTION:
        mOptionCommands.push_back(&command);
        break;
    case AGPIppCommand::BACK:
        mPopupCommands.push_back(&command);
        mOptionCommands.push_back(&command);
        break;
    case AGPIppCommand::CANCEL:
        mPopupCommands.push_back(&command);
        break;
    case AGPIppCommand::EXIT:
        if (mExitAppearance == EXIT_CONTEXT || mExitAppearance == EXIT_BOTH) {
            mOptionCommands.push_back(&command);
        }
        if (mExitAppearance != EXIT_CONTEXT) {
            mPopupCommands.push_back(&command);
        }
        break;
    default:
        break;
    }
    mCommands.push_back(&command);
}

void AGPIppTextBox::processElement() {
    std::sort(mOptionCommands.begin(), mOptionCommands.end(), AGPIppCommand::compareByPriority);
    std::sort(mPopupCommands.begin(), mPopupCommands.end(), AGPIppCommand::compareByPriority);
    std::sort(mCommands.begin(), mCommands.end(), AGPIppCommand::compareByPriority);
    addOptionComamnds();
    addPopupCommands();
    for (AGPIppCommand* command : mCommands) {
        setTimerCommand(command);
        observeEventCommand(command);
    }
    std::string text = getTextFromXml();
    createAndInitDisplayElements2ndRound(text);
}

// The confirmed text, not the initial one, goes back in: what the user confirmed survives hiding.
void AGPIppTextBox::reDisplayElement2ndRound() {
    addOptionComamnds();
    addPopupCommands();
    std::string text = mText;
    createAndInitDisplayElements2ndRound(text);
}

void AGPIppTextBox::addOptionComamnds() {
    if (mTextBox == nullptr) {
        return;
    }
    for (AGPIppCommand* command : mOptionCommands) {
        mTextBox->addCommand(command->getMenuCommand());
    }
}

void AGPIppTextBox::initPopupConfirm() {
    mPopupConfirm = new DisplayAPI::PopupConfirm(true);
    mPopupConfirm->setState(1);
    mPopupConfirm->setOwnerId(mAGPId);
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        mPopupConfirm->setCommandListener(gui->getMenuCommandListener());
        mPopupConfirm->setItemStateListener(gui->getItemStateListener());
    }
}

void AGPIppTextBox::addPopupCommands() {
    for (AGPIppCommand* command : mPopupCommands) {
        if (mPopupConfirm == nullptr) {
            initPopupConfirm();
        }
        mPopupConfirm->addCommand(command->getMenuCommand());
    }
}

void AGPIppTextBox::createAndInitDisplayElements2ndRound(std::string& text) {
    if (mTextBox == nullptr) {
        return;
    }
    mTextBox->setReadOnlyMode(mUneditable == UNEDITABLE_YES);
    mTextBox->setTextBoxType(mConstraint == NUMERIC    ? DisplayAPI::TextBox::NUMBER
                             : mConstraint == PASSWORD ? DisplayAPI::TextBox::PASSWORD
                                                       : DisplayAPI::TextBox::ANY);
    mTextBox->setText(text, false);
    mText = mTextBox->getText();
    AGPCommonBase* title = getChildByType(AGPObjectTypeInfo::ti_Title);
    mTextBox->setTitle(title != nullptr ? title->getContent() : std::string());
}

std::string AGPIppTextBox::getTextFromXml() {
    std::string text;
    if (AGPObjectPool::isPooled(*mDefault, AGPObjectPool::getAGPDefault_TEXT(), "TEXT")) {
        AGPCommonBase* child = getChildByType(AGPObjectTypeInfo::ti_Text);
        if (child != nullptr) {
            text = child->getContent();
        }
    } else if (AGPObjectPool::isPooled(*mDefault, AGPObjectPool::getAGPDefault_PHONENUMBER(),
                                       "PHONENUMBER")) {
        AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
        if (configuration != nullptr) {
            text = configuration->getSubscriberNumber();
        }
    }
    mText = text;
    return text;
}

void AGPIppTextBox::showTextBox(AGPMessage::MessageType type, bool bringToFront) {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        gui->showDisplayableTextBox(mTextBox, mQueueID, type, bringToFront);
    }
}

void AGPIppTextBox::addTextPair(std::multimap<std::string, std::string>& keyValues) {
    const std::string key =
        mKey == nullptr || mKey->getValueText().empty() ? std::string("null") : mKey->getValueText();
    keyValues.insert(std::make_pair(key, mText));
}

AGPIppCommand* AGPIppTextBox::getSelectedIppCommand(DisplayAPI::Command* command) {
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

void AGPIppTextBox::processMessage(AGPMessage& message) {
    if (mTextBox == nullptr) {
        AGP_LOG(6, "Command called on the AGPIppTextBox with deleted DisplayAPI objects - command will be "
                   "discarded\n");
        return;
    }
    if (isRemoteTrace()) {
        commandRemoteTrace("Receive message on a IppTextBox: message=", message);
    }

    AGPIppCommand* command = nullptr;
    AGPMessage::MessageType type = message.type;
    DisplayAPI::Command* widgetCommand = message.command;
    if (message.type == AGPMessage::Command_Timer) {
        command = mTimerCommand;
        if (command == nullptr) {
            AGP_LOG(
                6, "AGPIppTextBox::processMessage() AGPIppCommand associated to the Timer command not found");
            return;
        }
        type = command->getMessageType();
        widgetCommand = command->getMenuCommand();
    } else {
        command = getSelectedIppCommand(message.command);
    }

    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    std::multimap<std::string, std::string> keyValues;
    switch (type) {
    case AGPMessage::Command_Back:
        handleBackCommand(widgetCommand, message.bringToFront);
        break;
    case AGPMessage::Command_Cancel:
        if (message.command != nullptr && message.command == mAlertCancelCommand) {
            mTextBox->setText(mText);
            showTextBox(type, message.bringToFront);
            destroyAlert();
        } else {
            handleCancelCommand(message.type == AGPMessage::Command_Timer, message.bringToFront);
        }
        break;
    case AGPMessage::Command_Exit:
        if (command != nullptr) {
            command->gatherKeyValues(keyValues);
        }
        exitURL(keyValues);
        break;
    case AGPMessage::Command_OK: {
        const std::string text = mTextBox->getText();
        unsigned int number = 0;
        if (mConstraint == NUMERIC && (text.find_first_not_of("0123456789") != std::string::npos ||
                                       !AGPUtils::stringToUnsignedInt(text, number))) {
            const Translator* translator = AGPPhoneletManager::getTranslator();
            showAlert(TranslationInfo("alert.numberformat.title", translator).getText(),
                      TranslationInfo("alert.numberformat.msg", translator).getText(), message.bringToFront);
            mTextBox->setText(mText);
        } else {
            mTextBox->setText(text);
            mText = text;
        }
        break;
    }
    case AGPMessage::Command_Screen:
        if (command != nullptr && gui != nullptr) {
            gui->commandShowScreenID(command->getScreenID(), mQueueID, message.bringToFront);
        }
        break;
    case AGPMessage::Command_Action:
        if (command != nullptr) {
            command->invokeAction();
        }
        break;
    case AGPMessage::Command_Select:
        addTextPair(keyValues);
        if (command != nullptr) {
            command->gatherKeyValues(keyValues);
        }
        showTextBox(type, message.bringToFront);
        reReadFromUrl(keyValues);
        break;
    case AGPMessage::Command_Update:
        if (command != nullptr) {
            command->gatherKeyValues(keyValues);
        }
        showTextBox(type, message.bringToFront);
        reReadFromUrl(keyValues);
        break;
    default:
        break;
    }
}

void AGPIppTextBox::handleCancelCommand(bool fromTimer, bool bringToFront) {
    std::string text = getTextFromXml();
    mTextBox->setText(text);
    mText = mTextBox->getText();
    if (!fromTimer) {
        showTextBox(AGPMessage::Unknown, bringToFront);
        mPopupMenuDisplayed = false;
        destroyAlert();
    }
}

void AGPIppTextBox::handleBackCommand(DisplayAPI::Command* command, bool bringToFront) {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    AGPIppCommand* selected = getSelectedIppCommand(command);
    if (mPopupMenuDisplayed) {
        showTextBox(AGPMessage::Command_Back, bringToFront);
        if (selected != nullptr && gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, bringToFront);
        }
        mPopupMenuDisplayed = false;
        return;
    }
    if (selected != nullptr) {
        showTextBox(AGPMessage::Command_Back, bringToFront);
        if (gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, bringToFront);
        }
        return;
    }
    if (mPopupConfirm == nullptr) {
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

void AGPIppTextBox::showAlert(std::string title, const std::string& text, bool bringToFront) {
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
    mAlert->setTitle(title);
    mAlert->setText(text);
    if (gui != nullptr) {
        gui->showDisplayable(mAlert, mQueueID, AGPMessage::Unknown, bringToFront);
    }
}

void AGPIppTextBox::destroyAlert() {
    delete mAlert;
    mAlert = nullptr;
    delete mAlertCancelCommand;
    mAlertCancelCommand = nullptr;
}

void AGPIppTextBox::processNotifyEvent(AGPIppCommand::AGPEvent event) {
    processNotifyEventWithInputAlert(event, mAlert);
}

void AGPIppTextBox::addSelectedPairs(std::multimap<std::string, std::string>& keyValues) {
    addTextPair(keyValues);
}

DisplayAPI::Displayable* AGPIppTextBox::getDisplayAPIDisplayable() {
    return mTextBox;
}

void AGPIppTextBox::setHighlight(bool on) {
    if (mTextBox != nullptr) {
        mTextBox->setSelectionHighlight(on);
    }
}

void AGPIppTextBox::restoreFocusAndHighlight() {
    if (mTextBox != nullptr) {
        mTextBox->restoreFocusAndShowHighlight();
    }
}

bool AGPIppTextBox::isContextMenuDisplayed() {
    return mTextBox != nullptr && mTextBox->isContextMenuDisplayed();
}

bool AGPIppTextBox::isPopupMenuDisplayed() {
    return mPopupMenuDisplayed;
}

void AGPIppTextBox::pushRequestIndication() {
    mPopupMenuDisplayed = false;
}

void AGPIppTextBox::hideElement() {
    deleteDisplayElements();
}

void AGPIppTextBox::deleteDisplayElements() {
    if (mPopupConfirm != nullptr) {
        mPopupConfirm->clearCommands();
        delete mPopupConfirm;
        mPopupConfirm = nullptr;
    }
    destroyAlert();
    if (mTextBox != nullptr) {
        mTextBox->clearCommands();
        delete mTextBox;
        mTextBox = nullptr;
    }
}

void AGPIppTextBox::setTickerElement(AGPIppTicker& ticker) {
    if (mTextBox != nullptr && ticker.getTicker() != nullptr) {
        mTextBox->setTicker(ticker.getTicker());
    }
}
