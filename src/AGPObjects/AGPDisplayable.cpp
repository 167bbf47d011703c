// Base of the full-screen elements: their widget, commands, automatic timer and requests.
#include "AGPDisplayable.h"

#include <algorithm>
#include <limits>

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPDisplayable.cpp"

#include "AGPGUIHandler.h"
#include "AGPLog.h"
#include "AGPPhoneletManager.h"
#include "AGPSendURLListenerIfc.h"
#include "display/Command.h"
#include "display/Timer.h"

AGPDisplayable::AGPDisplayable()
    : mSendURLListener(nullptr), mTimer(nullptr), mTimerListener(nullptr), mTimerRunning(false),
      mTimerDuration(0), mTimerCommand(nullptr), mTimerWidgetCommand(nullptr) {}

AGPDisplayable::~AGPDisplayable() {
    stopTimer();
    mTimerCommand = nullptr;
    mObservedEventCommands.clear();
}

void AGPDisplayable::setTickerElement(AGPIppTicker&) {}

void AGPDisplayable::setCommandElement(AGPIppCommand&) {}

void AGPDisplayable::setSendURLListener(AGPSendURLListenerIfc* listener) {
    mSendURLListener = listener;
}

AGPSendURLListenerIfc* AGPDisplayable::getSendURLListener() {
    return mSendURLListener;
}

void AGPDisplayable::startTimer() {
    if (mTimer != nullptr) {
        mTimer->start(mTimerDuration);
        mTimerRunning = true;
    }
}

void AGPDisplayable::stopTimer() {
    if (mTimer != nullptr) {
        if (mTimerRunning) {
            mTimer->stop();
        }
        delete mTimer;
        mTimer = nullptr;
    }
    mTimerRunning = false;
    delete mTimerWidgetCommand;
    mTimerWidgetCommand = nullptr;
}

void AGPDisplayable::setHighlight(bool) {}

void AGPDisplayable::restoreFocusAndHighlight() {}

bool AGPDisplayable::isContextMenuDisplayed() {
    return false;
}

bool AGPDisplayable::isPopupMenuDisplayed() {
    return false;
}

void AGPDisplayable::pushRequestIndication() {}

void AGPDisplayable::processNotifyEvent(AGPIppCommand::AGPEvent) {}

bool AGPDisplayable::hasBack() {
    return true;
}

void AGPDisplayable::reReadFromUrl(std::multimap<std::string, std::string>& keyValues) {
    std::string url = getUrl();
    if (!url.empty() && mSendURLListener != nullptr) {
        mSendURLListener->sendURL(this, keyValues, url);
    }
}

// An exit request goes out even without a Url: the server is then told nothing, but the
// pipeline still ends the application.
void AGPDisplayable::exitURL(std::multimap<std::string, std::string>& keyValues) {
    if (mSendURLListener != nullptr) {
        std::string url = getUrl();
        mSendURLListener->sendExitURL(this, keyValues, url);
    }
}

void AGPDisplayable::createTimer(DisplayAPI::CommandListener* listener, unsigned int milliseconds) {
    stopTimer();
    mTimerListener = listener;
    mTimer = new DisplayAPI::Timer(milliseconds);
    mTimer->addCommandListener(listener);
    mTimerWidgetCommand = new DisplayAPI::Command("Command Timer", DisplayAPI::Command::TIMER);
    mTimerWidgetCommand->setOwnerId(mAGPId);
    mTimer->addCommand(mTimerWidgetCommand);
    mTimer->enableSingleShot(true);
    mTimerDuration = milliseconds;
}

void AGPDisplayable::initTimer(DisplayAPI::CommandListener* listener) {
    if (mTimerCommand != nullptr && listener != nullptr) {
        // Seconds beyond what the timer's milliseconds hold wait as long as they can rather than
        // wrapping round to a short time.
        constexpr unsigned int kLongestSeconds = std::numeric_limits<unsigned int>::max() / 1000u;
        createTimer(listener, std::min<unsigned int>(mTimerCommand->getAGPAuto(), kLongestSeconds) * 1000u);
    }
}

// Focus-event commands fire on focus changes only, never by time.
void AGPDisplayable::setTimerCommand(AGPIppCommand* command) {
    if (command == nullptr || command->getAGPAuto() == 0 ||
        command->getAGPEvent() != AGPIppCommand::EVENT_NONE) {
        return;
    }
    if (mTimerCommand == nullptr || command->getAGPAuto() < mTimerCommand->getAGPAuto()) {
        mTimerCommand = command;
    }
}

void AGPDisplayable::observeEventCommand(AGPIppCommand* command) {
    if (command == nullptr || command->getAGPDisplayOn() != AGPIppCommand::NONE) {
        return;
    }
    const AGPIppCommand::AGPType type = command->getAGPType();
    if (type != AGPIppCommand::SELECT && type != AGPIppCommand::UPDATE && type != AGPIppCommand::ACTION) {
        return;
    }
    const AGPIppCommand::AGPEvent event = command->getAGPEvent();
    if (findObservedEventCommand(event) != nullptr) {
        AGP_LOG(
            5,
            "observeEventCommand: command event [%d] already observed on displayable [%s] [ptr %p] [AGPId "
            "%lu] - will be ignored",
            static_cast<int>(event), AGPObjectTypeInfo::getTypeNameRef(getAGPObjectType()).c_str(),
            static_cast<void*>(this), static_cast<unsigned long>(mAGPId));
        return;
    }
    if (event != AGPIppCommand::ONFOCUS && event != AGPIppCommand::ONBLUR) {
        AGP_LOG(5, "observeEventCommand: unsupported event [%d] received", static_cast<int>(event));
        return;
    }
    mObservedEventCommands.push_back(command);
    AGP_LOG(5, "observeEventCommand: Observing command event [%d] on displayable [%s] [ptr %p] [AGPId %lu]",
            static_cast<int>(event), AGPObjectTypeInfo::getTypeNameRef(getAGPObjectType()).c_str(),
            static_cast<void*>(this), static_cast<unsigned long>(mAGPId));
}

AGPIppCommand* AGPDisplayable::findObservedEventCommand(AGPIppCommand::AGPEvent event) {
    for (AGPIppCommand* command : mObservedEventCommands) {
        if (command->getAGPEvent() == event) {
            return command;
        }
    }
    return nullptr;
}

std::string AGPDisplayable::getUrl() {
    AGPCommonBase* url = getChildByType(AGPObjectTypeInfo::ti_Url);
    return url != nullptr ? url->getContent() : std::string();
}

void AGPDisplayable::processNotifyEventWithInputAlert(AGPIppCommand::AGPEvent event,
                                                      DisplayAPI::Alert* inputAlert) {
    if (event == AGPIppCommand::ONFOCUS && inputAlert != nullptr) {
        AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
        if (gui != nullptr) {
            gui->showDisplayableAlert(inputAlert, mQueueID, static_cast<unsigned long>(-1),
                                      AGPMessage::Unknown, true);
        }
        return;
    }
    runObservedEventCommand(event);
}

void AGPDisplayable::runObservedEventCommand(AGPIppCommand::AGPEvent event) {
    if (event != AGPIppCommand::ONFOCUS && event != AGPIppCommand::ONBLUR) {
        return;
    }
    AGPIppCommand* command = findObservedEventCommand(event);
    if (command == nullptr) {
        return;
    }
    if (command->getAGPType() == AGPIppCommand::ACTION) {
        command->invokeAction();
        return;
    }
    std::multimap<std::string, std::string> keyValues;
    if (command->getAGPType() == AGPIppCommand::SELECT) {
        addSelectedPairs(keyValues);
    }
    command->gatherKeyValues(keyValues);
    reReadFromUrl(keyValues);
}
