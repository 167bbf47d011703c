// The full-screen message element: title, text and picture in one widget alert, closing itself or by a
// command.
#include "AGPIppAlert.h"

#include <memory>
#include <string_view>

#include "AGPIppPhoneNumber.h"
#include "display/Image.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppAlert.cpp"

#include <algorithm>

#include "AGPGUIHandler.h"
#include "AGPImage.h"
#include "AGPIppScreen.h"
#include "AGPLabel.h"
#include "AGPLog.h"
#include "AGPMenuCommandListener.h"
#include "AGPObjectMap.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "AGPUtils.h"
#include "display/Alert.h"
#include "display/MenuCommand.h"
#include "text/TranslationInfo.h"

using namespace std::string_view_literals;

namespace {

// The delay in whole seconds, at least one: a timer never fires at once.
std::uint32_t delaySeconds(std::int32_t milliseconds) {
    return std::max<std::uint32_t>(1, static_cast<std::uint32_t>(milliseconds) / 1000);
}

void setAttribute(AGPCommonBase& element, const char* name, const std::string& value) {
    std::string attributeName = name;
    std::string attributeValue = value;
    element.addAttribute(attributeName, attributeValue);
}

} // namespace

AGPIppAlert::AGPIppAlert()
    : mTitleCount(0, 1), mUrlCount(0, 1), mTextCount(0, 1), mImageCount(0, 1), mType(TYPE_OTHER),
      mDelay(AGPDelay_FOREVER), mLastMessageAgpId(0), mAlert(nullptr), mDismissCommand(nullptr) {
    registerElement();
}

AGPIppAlert::~AGPIppAlert() {
    unregisterElement();
    deleteDisplayElements();
    if (mDismissCommand != nullptr) {
        if (mTimerCommand == mDismissCommand) {
            mTimerCommand = nullptr;
        }
        AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(mDismissCommand->getAGPObjectID());
        mDismissCommand = nullptr;
    }
}

bool AGPIppAlert::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Title:
        return addAGPTitle(child);
    case AGPObjectTypeInfo::ti_Url:
        return addAGPUrl(child);
    case AGPObjectTypeInfo::ti_Text:
        return addAGPText(child);
    case AGPObjectTypeInfo::ti_Image:
        return addAGPImage(child);
    default:
        return false;
    }
}

bool AGPIppAlert::addAttribute(std::string& name, std::string& value) {
    if (name == "Type"sv) {
        mType = parseAGPType(value);
        return true;
    }
    if (name == "Delay"sv) {
        mDelay = parseAGPDelay(value);
        return true;
    }
    return false;
}

bool AGPIppAlert::addContent(std::string&) {
    return false;
}

AGPIppAlert::AGPType AGPIppAlert::parseAGPType(const std::string& text) {
    if (text == "ALARM") {
        return ALARM;
    }
    if (text == "CONFIRMATION") {
        return CONFIRMATION;
    }
    if (text == "INFO") {
        return INFO;
    }
    if (text == "WARNING") {
        return WARNING;
    }
    return TYPE_OTHER;
}

std::int32_t AGPIppAlert::parseAGPDelay(const std::string& text) {
    int delay = 0;
    if (!AGPUtils::stringToInt(text, delay) || delay < 0) {
        return AGPDelay_FOREVER;
    }
    return delay;
}

int AGPIppAlert::getDisplayAlertType() const {
    switch (mType) {
    case ALARM:
        return DisplayAPI::ALERT_ALARM;
    case CONFIRMATION:
        return DisplayAPI::ALERT_CONFIRMATION;
    case INFO:
        return DisplayAPI::ALERT_INFO;
    case WARNING:
        return DisplayAPI::ALERT_WARNING;
    default:
        return DisplayAPI::ALERT_OTHER;
    }
}

AGPCommonBase* AGPIppAlert::getAGPImage() {
    return getChildByType(AGPObjectTypeInfo::ti_Image);
}

void AGPIppAlert::initializeElement() {
    createAndInitDisplayElements();
}

// The picture of the Image child, fetched now when it is not there yet; a picture that fails
// leaves the alert without one.
DisplayAPI::Image* AGPIppAlert::takeImage() {
    auto* image = static_cast<AGPImage*>(getAGPImage());
    return image != nullptr ? image->takePicture(this) : nullptr;
}

// A phone number in the text brings its own picture (a name and its number on two lines);
// without one, the Image child's picture is shown.
void AGPIppAlert::createAndInitDisplayElements() {
    deleteDisplayElements();
    AGPCommonBase* title = getChildByType(AGPObjectTypeInfo::ti_Title);
    AGPCommonBase* text = getChildByType(AGPObjectTypeInfo::ti_Text);
    auto* phoneNumber =
        text != nullptr
            ? static_cast<AGPIppPhoneNumber*>(text->getChildByType(AGPObjectTypeInfo::ti_IppPhoneNumber))
            : nullptr;
    std::unique_ptr<DisplayAPI::Image> picture;
    if (phoneNumber != nullptr) {
        // A name and its number stand on two lines.
        phoneNumber->setSeparator("\n");
        const std::string path = phoneNumber->getImagePath();
        if (!path.empty()) {
            picture = std::make_unique<DisplayAPI::Image>(path);
        }
    }
    mAlert = new DisplayAPI::Alert(title != nullptr ? title->getContent() : std::string(),
                                   text != nullptr ? text->getContent() : std::string(),
                                   phoneNumber != nullptr ? picture.get() : takeImage(),
                                   static_cast<DisplayAPI::AlertType>(getDisplayAlertType()));
    mAlert->setOwnerId(mAGPId);
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr && gui->getMenuCommandListener() != nullptr) {
        mAlert->setCommandListener(gui->getMenuCommandListener());
    }
}

void AGPIppAlert::deleteDisplayElements() {
    if (mAlert != nullptr) {
        mAlert->clearCommands();
        delete mAlert;
        mAlert = nullptr;
    }
}

void AGPIppAlert::imageDownloaded(unsigned long agpId) {
    auto* image = static_cast<AGPImage*>(getAGPImage());
    if (image == nullptr || image->getAGPObjectID() != agpId || image->getDisplayAPI_Image() == nullptr ||
        mAlert == nullptr) {
        return;
    }
    mAlert->setImage(image->getDisplayAPI_Image());
}

// A new display may be dismissed again.
void AGPIppAlert::reDisplayElement() {
    mLastMessageAgpId = 0;
}

DisplayAPI::Displayable* AGPIppAlert::getDisplayAPIDisplayable() {
    return mAlert;
}

void AGPIppAlert::setCommandElement(AGPIppCommand& command) {
    if (mAlert == nullptr) {
        return;
    }
    for (AGPIppCommand* listed : mCommands) {
        if (*listed == command) {
            return;
        }
    }
    mCommands.push_back(&command);
}

void AGPIppAlert::processElement() {
    std::sort(mCommands.begin(), mCommands.end(), AGPIppCommand::compareByPriority);
    addCommands();
}

void AGPIppAlert::addCommands() {
    if (mAlert == nullptr) {
        return;
    }
    std::vector<AGPIppCommand*> visible;
    for (AGPIppCommand* command : mCommands) {
        if (command->getAGPDisplayOn() != AGPIppCommand::NONE) {
            mAlert->addCommand(command->getMenuCommand());
            visible.push_back(command);
        }
        setTimerCommand(command);
        observeEventCommand(command);
    }
    if (visible.size() == 1 && mDelay >= 1) {
        AGPIppCommand* only = visible.front();
        const std::uint32_t seconds = delaySeconds(mDelay);
        if (only->getAGPAuto() == 0 || only->getAGPAuto() > seconds) {
            setAttribute(*only, "Auto", std::to_string(seconds));
            setTimerCommand(only);
        }
    }
    if (visible.empty()) {
        createDismissCommand();
        if (mDismissCommand != nullptr) {
            mAlert->addCommand(mDismissCommand->getMenuCommand());
            // Without a delay it has no Auto and must not drive a timer.
            if (mDismissCommand->getAGPAuto() != 0) {
                mTimerCommand = mDismissCommand;
            }
        }
    }
}

void AGPIppAlert::createDismissCommand() {
    if (mDismissCommand != nullptr) {
        return;
    }
    mDismissCommand = new AGPIppCommand();
    mDismissCommand->setQueueID(mQueueID);
    setAttribute(*mDismissCommand, "Type", "BACK");
    setAttribute(*mDismissCommand, "DisplayOn", "LISTITEM");
    setAttribute(*mDismissCommand, "Priority", "0");
    if (mDelay > 0) {
        setAttribute(*mDismissCommand, "Auto", std::to_string(delaySeconds(mDelay)));
    }
    auto* label = new AGPLabel();
    std::string text = TranslationInfo("alert.dismiss", AGPPhoneletManager::getTranslator()).getText();
    label->addContent(text);
    label->setQueueID(mQueueID);
    if (mDismissCommand->addChild(*label)) {
        label->setParent(mDismissCommand);
    } else {
        delete label;
    }
    mDismissCommand->initializeElement();
    mDismissCommand->processElement();
}

AGPIppCommand* AGPIppAlert::findCommand(DisplayAPI::Command* command) {
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

void AGPIppAlert::processMessage(AGPMessage& message) {
    if (mAlert == nullptr) {
        AGP_LOG(6, "Command called on the AGPIppAlert with deleted DisplayAPI objects - command will be "
                   "discarded\n");
        return;
    }
    if (isRemoteTrace()) {
        commandRemoteTrace("Receive message on a IppAlert: message=", message);
    }
    if (mDismissCommand != nullptr) {
        dismiss(message);
        return;
    }
    AGPMessage::MessageType type = message.type;
    DisplayAPI::Command* widgetCommand = message.command;
    if (message.type == AGPMessage::Command_Timer) {
        if (mTimerCommand == nullptr) {
            AGP_LOG(6,
                    "AGPIppAlert::processMessage() AGPIppCommand associated to the Timer command not found");
            return;
        }
        type = mTimerCommand->getMessageType();
        widgetCommand = mTimerCommand->getMenuCommand();
    }
    std::multimap<std::string, std::string> keyValues;
    switch (type) {
    case AGPMessage::Command_Exit:
        processAlertCommand(keyValues, widgetCommand);
        exitURL(keyValues);
        break;
    case AGPMessage::Command_Screen:
        screenAlertCommand(widgetCommand, message.bringToFront);
        break;
    case AGPMessage::Command_Action:
        invokeCommand(widgetCommand);
        break;
    case AGPMessage::Command_Select:
    case AGPMessage::Command_Update:
        processAlertCommand(keyValues, widgetCommand);
        reReadFromUrl(keyValues);
        break;
    default:
        dismiss(message);
        break;
    }
}

void AGPIppAlert::processAlertCommand(std::multimap<std::string, std::string>& keyValues,
                                      DisplayAPI::Command* command) {
    AGPIppCommand* found = findCommand(command);
    if (found != nullptr) {
        found->gatherKeyValues(keyValues);
    }
}

void AGPIppAlert::screenAlertCommand(DisplayAPI::Command* command, bool bringToFront) {
    AGPIppCommand* found = findCommand(command);
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (found != nullptr && gui != nullptr) {
        gui->commandShowScreenID(found->getScreenID(), mQueueID, bringToFront);
    }
}

void AGPIppAlert::invokeCommand(DisplayAPI::Command* command) {
    AGPIppCommand* found = findCommand(command);
    if (found != nullptr) {
        found->invokeAction();
    }
}

// A key pressed just after the timer fired must not take the user back a second time.
void AGPIppAlert::dismiss(AGPMessage& message) {
    if (message.agpId == mLastMessageAgpId) {
        AGP_LOG(6, "Previous ID of Alert is same with actual ID - message will be discarded\n");
        return;
    }
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui == nullptr) {
        return;
    }
    // A key pressed while a request was on its way arrives after the reply replaced the alert;
    // going back then would act on the new screen (close its tab, or end the application).
    AGPIppScreen* screen = gui->getCurrentScreen(mQueueID);
    if (screen == nullptr || screen->getDisplayableElement() != this) {
        AGP_LOG(6, "Alert is no longer shown - dismissal discarded\n");
        return;
    }
    mLastMessageAgpId = message.agpId;
    gui->commandAlertBack(mQueueID, message.bringToFront);
}

void AGPIppAlert::processNotifyEvent(AGPIppCommand::AGPEvent event) {
    runObservedEventCommand(event);
}
