// A slider between 0 and a maximum in seconds: an input slider, or an automatic gauge that
// advances once a second.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "AGPCommonBase.h"
#include "AGPDisplayItemIfc.h"
#include "AGPKeyValueProviderIfc.h"

class AGPIppGaugeValueChangeListenerIfc;
class AGPKey;

namespace DisplayAPI {
class Command;
class SliderItem;
class Timer;
} // namespace DisplayAPI

// The slider lives from initialization (or redisplay) to hiding; in a form it belongs to the
// form widget once appended, inside a player (or outside any form) to the gauge. The timer and
// its command belong to the gauge from initTimer until stopTimer or hiding. Listeners are not
// owned: they are the gauge's parent, which outlives it. All of it is touched only on the
// gauge's queue thread; the timer's expiry arrives there as a Command_Timer message.
class AGPIppGauge : public AGPCommonBase, public AGPDisplayItemIfc, public AGPKeyValueProviderIfc {
public:
    enum AGPInteractive : std::int32_t { INTERACTIVE = 0, AUTO = 1 };

    AGPIppGauge();
    AGPIppGauge(const AGPIppGauge&) = delete;
    AGPIppGauge& operator=(const AGPIppGauge&) = delete;
    ~AGPIppGauge() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppGauge; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override {
        return mLabelCount.isCountValid() && mMaximumCount.isCountValid() && mInitialCount.isCountValid();
    }
    void initializeElement() override;
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override { createAndInitDisplayElements(false); }

    DisplayAPI::Item* getDisplayItem() override;
    void setContextMenuArrowIcon(bool shown) override;
    void performCancel() override;
    void gatherKeyValues(std::multimap<std::string, std::string>& keyValues) override;

    void createAndInitDisplayElements(bool fromDocument);
    void deleteDisplayElements();
    void initTimer();
    void startTimer();
    void stopTimer();
    int getValue() const { return mValue; }
    int getMaxValue() const { return mMaxValue; }
    void addGaugeValueChangeListener(AGPIppGaugeValueChangeListenerIfc* listener);
    void removeGaugeValueChangeListener(AGPIppGaugeValueChangeListenerIfc* listener);

    AGPInteractive getAGPInteractive() const { return mInteractive; }
    void setAGPInteractive(AGPInteractive interactive) { mInteractive = interactive; }
    AGPKey* getAGPKey() const { return mKey; }
    bool isTimerStarted() const { return mTimerStarted; }
    DisplayAPI::Timer* getTimer() const { return mTimer; }
    DisplayAPI::Command* getTimerCommand() const { return mTimerCommand; }
    static AGPInteractive parseAGPInteractive(const std::string& text);

private:
    // `value` limited to 0..maximum.
    int limited(int value) const;
    std::string childContent(AGPObjectType type);

    AGPChildCount mLabelCount;
    AGPChildCount mMaximumCount;
    AGPChildCount mInitialCount;
    AGPInteractive mInteractive;
    AGPKey* mKey;
    bool mKeyParsed;
    DisplayAPI::SliderItem* mSlider;
    DisplayAPI::Timer* mTimer;
    DisplayAPI::Command* mTimerCommand;
    bool mTimerStarted;
    std::int32_t mInterval;
    std::vector<AGPIppGaugeValueChangeListenerIfc*> mListeners;
    std::int32_t mMinValue;
    std::int32_t mMaxValue;
    std::int32_t mValue;
    std::int32_t mStep;
    std::string mSavedValue;
    bool mOwnsSlider;
};
