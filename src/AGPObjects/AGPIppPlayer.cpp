// The full-screen media player for a message kept on the server: its buttons send action words.
#include "AGPIppPlayer.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppPlayer.cpp"

#include <string>
#include <string_view>

#include "AGPCommandListener.h"
#include "AGPGUIHandler.h"
#include "AGPItemStateListener.h"
#include "AGPKey.h"
#include "AGPLog.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"

using namespace std::string_view_literals;

AGPIppPlayer::AGPIppPlayer()
    : mUrlCount(0, 1), mGaugeCount(0, 1), mState(STATE_NOT_GIVEN), mStateGiven(false), mMode(MODE_NOT_GIVEN),
      mModeGiven(false), mKey(new AGPKey("null")), mKeyGiven(false), mSavedProgress(0), mStoppedState(false),
      mPlayer(nullptr) {
    registerElement();
}

AGPIppPlayer::~AGPIppPlayer() {
    unregisterElement();
    deleteDisplayElements();
    delete mKey;
}

bool AGPIppPlayer::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Url:
        return addCountedChild(mUrlCount, child);
    case AGPObjectTypeInfo::ti_IppGauge:
        return addCountedChild(mGaugeCount, child);
    default:
        return false;
    }
}

bool AGPIppPlayer::addAttribute(std::string& name, std::string& value) {
    if (name == "State"sv) {
        mState = parseAGPState(value);
        mStateGiven = mState != STATE_NOT_GIVEN;
        return mStateGiven;
    }
    if (name == "Mode"sv) {
        mMode = parseAGPMode(value);
        mModeGiven = mMode != MODE_NOT_GIVEN;
        return mModeGiven;
    }
    if (name == "Key"sv) {
        delete mKey;
        mKey = AGPKey::parseAGPKey(value);
        mKeyGiven = !AGPObjectPool::isPooled(*mKey, AGPObjectPool::getAGPKey_PARSE_FAILED());
        return mKeyGiven;
    }
    return false;
}

AGPIppPlayer::AGPState AGPIppPlayer::parseAGPState(const std::string& text) {
    return text == "PLAYING"     ? PLAYING
           : text == "RECORDING" ? RECORDING
           : text == "STOPPED"   ? STOPPED
                                 : STATE_NOT_GIVEN;
}

AGPIppPlayer::AGPMode AGPIppPlayer::parseAGPMode(const std::string& text) {
    return text == "CALL" ? CALL : text == "RECORD" ? RECORD : MODE_NOT_GIVEN;
}

bool AGPIppPlayer::isValid() {
    return mStateGiven && mModeGiven && mKeyGiven && mUrlCount.isCountValid() && mGaugeCount.isCountValid();
}

bool AGPIppPlayer::getFromXMLStateAndModeAndInteractive(DisplayAPI::PopupPlayerState& state,
                                                        DisplayAPI::PopupPlayerMode& mode,
                                                        AGPIppGauge::AGPInteractive& interactive) {
    AGPIppGauge* gauge = getGauge();
    const bool automatic = gauge != nullptr && gauge->getAGPInteractive() == AGPIppGauge::AUTO;
    bool drives = false;
    if (mMode == MODE_NOT_GIVEN || mState == STATE_NOT_GIVEN) {
        state = DisplayAPI::PLAYER_UNSET;
        mode = DisplayAPI::PLAYER_MODE_CALL;
        drives = automatic;
    } else {
        mode = mMode == CALL ? DisplayAPI::PLAYER_MODE_CALL : DisplayAPI::PLAYER_MODE_RECORD;
        switch (mState) {
        case PLAYING:
            state = automatic ? DisplayAPI::PLAYER_PLAYING : DisplayAPI::PLAYER_STOPPED;
            drives = automatic;
            break;
        case RECORDING:
            drives = automatic && mMode == RECORD;
            state = drives ? DisplayAPI::PLAYER_RECORDING : DisplayAPI::PLAYER_STOPPED;
            break;
        default:
            state = automatic ? DisplayAPI::PLAYER_FINISHED : DisplayAPI::PLAYER_STOPPED;
            break;
        }
    }
    interactive = drives ? AGPIppGauge::AUTO : AGPIppGauge::INTERACTIVE;
    return drives;
}

// A gauge that does not drive the progress bar stops being automatic, so it never ticks.
void AGPIppPlayer::createAndInitDisplayElements() {
    deleteDisplayElements();
    DisplayAPI::PopupPlayerState state = DisplayAPI::PLAYER_UNSET;
    DisplayAPI::PopupPlayerMode mode = DisplayAPI::PLAYER_MODE_CALL;
    AGPIppGauge::AGPInteractive interactive = AGPIppGauge::INTERACTIVE;
    const bool drives = getFromXMLStateAndModeAndInteractive(state, mode, interactive);
    mStoppedState = state == DisplayAPI::PLAYER_STOPPED;
    int maximum = 100;
    int value = 0;
    if (AGPIppGauge* gauge = getGauge()) {
        maximum = gauge->getMaxValue();
        value = gauge->getValue();
        if (drives) {
            gauge->addGaugeValueChangeListener(this);
        }
        gauge->setAGPInteractive(interactive);
    }
    mPlayer = new DisplayAPI::PopupPlayer();
    mPlayer->setOwnerId(mAGPId);
    mPlayer->setState(state, mode);
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        mPlayer->addCommandListener(gui->getCommandListener());
        mPlayer->addItemStateListener(gui->getItemStateListener());
    }
    mPlayer->setProgressBarMinValue(0);
    mPlayer->setProgressBarMaxValue(maximum);
    mPlayer->setProgressBarStep(1);
    mPlayer->setProgressBarValue(value);
}

void AGPIppPlayer::reDisplayElement() {
    createAndInitDisplayElements();
    if (mPlayer != nullptr) {
        mPlayer->setProgressBarValue(mSavedProgress);
    }
    mSavedProgress = 0;
}

void AGPIppPlayer::hideElement() {
    if (mPlayer != nullptr) {
        mSavedProgress = mPlayer->getProgressBarValue();
    }
    deleteDisplayElements();
}

void AGPIppPlayer::deleteDisplayElements() {
    delete mPlayer;
    mPlayer = nullptr;
}

DisplayAPI::Displayable* AGPIppPlayer::getDisplayAPIDisplayable() {
    return mPlayer;
}

void AGPIppPlayer::startTimer() {
    AGPDisplayable::startTimer();
    if (AGPIppGauge* gauge = getGauge()) {
        gauge->initTimer();
        gauge->startTimer();
    }
}

void AGPIppPlayer::stopTimer() {
    AGPDisplayable::stopTimer();
    if (AGPIppGauge* gauge = getGauge()) {
        gauge->stopTimer();
    }
}

// At the end of the message the player stops and its progress starts over.
void AGPIppPlayer::gaugeValueChanged(AGPIppGauge* gauge) {
    if (gauge == nullptr || mPlayer == nullptr) {
        return;
    }
    if (gauge->getValue() >= gauge->getMaxValue()) {
        mPlayer->setState(DisplayAPI::PLAYER_FINISHED, mPlayer->getMode());
        mPlayer->setProgressBarValue(0);
    } else {
        mPlayer->setProgressBarValue(gauge->getValue());
    }
}

const char* AGPIppPlayer::actionWord(AGPMessage& message) {
    switch (message.type) {
    case AGPMessage::Command_Back:
        return "rewind";
    case AGPMessage::Command_OK:
        if (message.command == DisplayAPI::PopupPlayer::CONFIRM()) {
            return "confirm";
        }
        if (message.command == DisplayAPI::PopupPlayer::PLAY()) {
            return "play";
        }
        if (message.command == DisplayAPI::PopupPlayer::RECORD()) {
            return "record";
        }
        return "ok";
    case AGPMessage::Command_Screen:
        return "call";
    case AGPMessage::Command_Stop:
        // The first Stop on a stopped player only takes it out of that state.
        if (mStoppedState) {
            mStoppedState = false;
            return nullptr;
        }
        return "stop";
    case AGPMessage::Command_Right:
        return "forward";
    case AGPMessage::Command_Delete:
        return "delete";
    case AGPMessage::Command_Skip_Back:
        return "skip_rewind";
    case AGPMessage::Command_Skip_Right:
        return "skip_forward";
    case AGPMessage::Command_Pause:
        return "pause";
    case AGPMessage::Command_Cancel: {
        DisplayAPI::PopupPlayerState state = DisplayAPI::PLAYER_UNSET;
        DisplayAPI::PopupPlayerMode mode = DisplayAPI::PLAYER_MODE_CALL;
        AGPIppGauge::AGPInteractive interactive = AGPIppGauge::INTERACTIVE;
        const bool drives = getFromXMLStateAndModeAndInteractive(state, mode, interactive);
        if (mStoppedState && mPlayer != nullptr) {
            mPlayer->setState(DisplayAPI::PLAYER_FINISHED, mode);
            mStoppedState = false;
            return nullptr;
        }
        if (mPlayer != nullptr && drives) {
            return "cancel";
        }
        AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
        if (gui != nullptr) {
            gui->commandShowScreenBack(mQueueID, message.bringToFront);
        }
        return nullptr;
    }
    default:
        return nullptr;
    }
}

void AGPIppPlayer::processMessage(AGPMessage& message) {
    const char* word = actionWord(message);
    if (word != nullptr) {
        sendAction(word);
    }
}

// The action word under the player's key, and where the message stands under the gauge's key.
void AGPIppPlayer::sendAction(const char* word) {
    AGP_LOG(5, "AGPIppPlayer: action %s", word);
    std::multimap<std::string, std::string> keyValues;
    keyValues.emplace(mKey->getValueText(), word);
    AGPIppGauge* gauge = getGauge();
    if (gauge != nullptr && mPlayer != nullptr) {
        keyValues.emplace(gauge->getAGPKey()->getValueText(), std::to_string(mPlayer->getProgressBarValue()));
    }
    reReadFromUrl(keyValues);
}
