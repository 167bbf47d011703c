// A slider between 0 and a maximum in seconds: an input slider, or an automatic gauge that
// advances once a second.
#include "AGPIppGauge.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppGauge.cpp"

#include <algorithm>
#include <string>
#include <string_view>

#include "AGPCommandListener.h"
#include "AGPGUIHandler.h"
#include "AGPIppGaugeValueChangeListenerIfc.h"
#include "AGPKey.h"
#include "AGPLog.h"
#include "AGPMessage.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPUtils.h"
#include "display/Command.h"
#include "display/SliderItem.h"
#include "display/Timer.h"

using namespace std::string_view_literals;

AGPIppGauge::AGPIppGauge()
    : mLabelCount(0, 1), mMaximumCount(0, 1), mInitialCount(0, 1), mInteractive(INTERACTIVE),
      mKey(new AGPKey("null")), mKeyParsed(true), mSlider(nullptr), mTimer(nullptr), mTimerCommand(nullptr),
      mTimerStarted(false), mInterval(1000), mMinValue(0), mMaxValue(100), mValue(0), mStep(1),
      mOwnsSlider(false) {
    registerElement();
}

AGPIppGauge::~AGPIppGauge() {
    unregisterElement();
    stopTimer();
    deleteDisplayElements();
    delete mKey;
}

bool AGPIppGauge::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Label:
        return addCountedChild(mLabelCount, child);
    case AGPObjectTypeInfo::ti_Maximum:
        return addCountedChild(mMaximumCount, child);
    case AGPObjectTypeInfo::ti_Initial:
        return addCountedChild(mInitialCount, child);
    default:
        return false;
    }
}

bool AGPIppGauge::addAttribute(std::string& name, std::string& value) {
    if (name == "Key"sv) {
        delete mKey;
        mKey = AGPKey::parseAGPKey(value);
        mKeyParsed = !AGPObjectPool::isPooled(*mKey, AGPObjectPool::getAGPKey_PARSE_FAILED());
        return mKeyParsed;
    }
    if (name == "Interactive"sv) {
        mInteractive = parseAGPInteractive(value);
        return true;
    }
    return false;
}

AGPIppGauge::AGPInteractive AGPIppGauge::parseAGPInteractive(const std::string& text) {
    return text == "AUTO" ? AUTO : INTERACTIVE;
}

void AGPIppGauge::initializeElement() {
    mOwnsSlider = mParent != nullptr && mParent->getAGPObjectType() == AGPObjectTypeInfo::ti_IppPlayer;
    createAndInitDisplayElements(true);
}

std::string AGPIppGauge::childContent(AGPObjectType type) {
    AGPCommonBase* child = getChildByType(type);
    return child != nullptr ? child->getContent() : std::string();
}

int AGPIppGauge::limited(int value) const {
    return value < 0 ? 0 : std::min(value, static_cast<int>(mMaxValue));
}

// A maximum or initial value that does not read as seconds leaves the one before.
void AGPIppGauge::createAndInitDisplayElements(bool fromDocument) {
    deleteDisplayElements();
    AGPCommonBase* labelChild = getChildByType(AGPObjectTypeInfo::ti_Label);
    const std::string label = labelChild != nullptr ? labelChild->getContent() : std::string("gauge");
    int seconds = 0;
    if (AGPUtils::getTimeInSeconds(childContent(AGPObjectTypeInfo::ti_Maximum), seconds) && seconds > 0) {
        mMaxValue = seconds;
    }
    const std::string valueText = fromDocument ? childContent(AGPObjectTypeInfo::ti_Initial) : mSavedValue;
    if (AGPUtils::getTimeInSeconds(valueText, seconds)) {
        mValue = limited(seconds);
    }
    mSlider = new DisplayAPI::SliderItem(nullptr);
    mSlider->setLabel(label);
    mSlider->setMinValue(std::to_string(mMinValue));
    mSlider->setMaxValue(std::to_string(mMaxValue));
    mSlider->setValue(std::to_string(mValue));
    mSlider->setInterval(std::to_string(mStep));
    mSlider->setOwnerId(mAGPId);
    mSlider->setInformAppOnOk(false);
    if (mInteractive == AUTO) {
        mSlider->setAutomatic(true);
    }
}

// A slider in a form goes with the form widget.
void AGPIppGauge::deleteDisplayElements() {
    if (mSlider != nullptr && (mOwnsSlider || mSlider->getForm() == nullptr)) {
        delete mSlider;
    }
    mSlider = nullptr;
}

void AGPIppGauge::hideElement() {
    if (mSlider != nullptr) {
        mSavedValue = mSlider->getValue();
    }
    stopTimer();
    deleteDisplayElements();
}

// A gauge whose timer has run once is not started again: it shows its last value.
void AGPIppGauge::initTimer() {
    if (mInteractive != AUTO || mTimerStarted) {
        return;
    }
    delete mTimer;
    delete mTimerCommand;
    mTimer = new DisplayAPI::Timer(static_cast<unsigned>(mInterval));
    mTimer->setOwnerId(mAGPId);
    mTimerCommand = new DisplayAPI::Command("", DisplayAPI::Command::TIMER);
    mTimerCommand->setOwnerId(mAGPId);
    mTimer->addCommand(mTimerCommand);
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        mTimer->addCommandListener(gui->getCommandListener());
    }
    mTimer->enableSingleShot(true);
}

void AGPIppGauge::startTimer() {
    if (mTimer != nullptr) {
        mTimer->start(static_cast<unsigned>(mInterval));
        mTimerStarted = true;
    }
}

void AGPIppGauge::stopTimer() {
    if (mTimer != nullptr && mTimerStarted) {
        mTimer->stop();
    }
    delete mTimer;
    mTimer = nullptr;
    delete mTimerCommand;
    mTimerCommand = nullptr;
}

void AGPIppGauge::processMessage(AGPMessage& message) {
    if (message.type != AGPMessage::Command_Timer) {
        return;
    }
    if (mInteractive != AUTO || mSlider == nullptr || mTimer == nullptr || message.command != mTimerCommand) {
        stopTimer();
        return;
    }
    mValue = std::min(mValue + mStep, mMaxValue);
    AGP_LOG(6, "AGPIppGauge: value %d of %d", static_cast<int>(mValue), static_cast<int>(mMaxValue));
    // A copy: a listener may change the list while it is told.
    const std::vector<AGPIppGaugeValueChangeListenerIfc*> listeners = mListeners;
    for (AGPIppGaugeValueChangeListenerIfc* listener : listeners) {
        listener->gaugeValueChanged(this);
    }
    mSlider->setValue(std::to_string(mValue));
    if (mValue < mMaxValue) {
        startTimer();
    } else {
        stopTimer();
    }
}

void AGPIppGauge::addGaugeValueChangeListener(AGPIppGaugeValueChangeListenerIfc* listener) {
    if (listener != nullptr &&
        std::find(mListeners.begin(), mListeners.end(), listener) == mListeners.end()) {
        mListeners.push_back(listener);
    }
}

void AGPIppGauge::removeGaugeValueChangeListener(AGPIppGaugeValueChangeListenerIfc* listener) {
    mListeners.erase(std::remove(mListeners.begin(), mListeners.end(), listener), mListeners.end());
}

DisplayAPI::Item* AGPIppGauge::getDisplayItem() {
    return mSlider;
}

void AGPIppGauge::setContextMenuArrowIcon(bool shown) {
    if (mSlider != nullptr) {
        mSlider->setInformAppOnOk(shown);
    }
}

// Values below 1 (and text that is not a number) go back to 0.
void AGPIppGauge::performCancel() {
    int value = 0;
    if (!AGPUtils::stringToInt(childContent(AGPObjectTypeInfo::ti_Initial), value) || value < 1) {
        value = 0;
    }
    if (mSlider != nullptr) {
        mSlider->setValue(std::to_string(limited(value)));
    }
}

// An automatic gauge only shows progress; it sends nothing.
void AGPIppGauge::gatherKeyValues(std::multimap<std::string, std::string>& keyValues) {
    if (mInteractive == AUTO || mSlider == nullptr || !mKeyParsed) {
        return;
    }
    keyValues.emplace(mKey->getValueText(), mSlider->getValue());
}
