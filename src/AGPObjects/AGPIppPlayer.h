// The full-screen media player for a message kept on the server: its buttons send action words.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "AGPDisplayable.h"
#include "AGPIppGauge.h"
#include "AGPIppGaugeValueChangeListenerIfc.h"
#include "display/PopupPlayer.h"

class AGPKey;

// The player widget lives from initialization (or redisplay) to hiding and belongs to the player;
// the progress survives a hide and redisplay. Everything here runs on the player's queue thread;
// the gauge child tells it of each step on that thread too.
class AGPIppPlayer : public AGPDisplayable, public AGPIppGaugeValueChangeListenerIfc {
public:
    enum AGPState : std::int32_t { PLAYING = 0, RECORDING = 1, STOPPED = 2, STATE_NOT_GIVEN = 3 };
    enum AGPMode : std::int32_t { CALL = 0, RECORD = 1, MODE_NOT_GIVEN = 2 };

    AGPIppPlayer();
    AGPIppPlayer(const AGPIppPlayer&) = delete;
    AGPIppPlayer& operator=(const AGPIppPlayer&) = delete;
    ~AGPIppPlayer() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppPlayer; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override;
    void initializeElement() override { createAndInitDisplayElements(); }
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override;

    DisplayAPI::Displayable* getDisplayAPIDisplayable() override;
    void startTimer() override;
    void stopTimer() override;
    void gaugeValueChanged(AGPIppGauge* gauge) override;

    void createAndInitDisplayElements();
    void deleteDisplayElements();
    // The widget's state and mode for the document's "Mode" and "State" and the gauge's
    // "Interactive"; true when the gauge drives the progress bar.
    bool getFromXMLStateAndModeAndInteractive(DisplayAPI::PopupPlayerState& state,
                                              DisplayAPI::PopupPlayerMode& mode,
                                              AGPIppGauge::AGPInteractive& interactive);

    AGPState getAGPState() const { return mState; }
    AGPMode getAGPMode() const { return mMode; }
    AGPKey* getAGPKey() const { return mKey; }
    AGPIppGauge* getGauge() {
        return static_cast<AGPIppGauge*>(getChildByType(AGPObjectTypeInfo::ti_IppGauge));
    }
    static AGPState parseAGPState(const std::string& text);
    static AGPMode parseAGPMode(const std::string& text);

private:
    // The word a message stands for, or null when it sends nothing.
    const char* actionWord(AGPMessage& message);
    void sendAction(const char* word);

    AGPChildCount mUrlCount;
    AGPChildCount mGaugeCount;
    AGPState mState;
    bool mStateGiven;
    AGPMode mMode;
    bool mModeGiven;
    AGPKey* mKey;
    bool mKeyGiven;
    std::int32_t mSavedProgress;
    bool mStoppedState;
    DisplayAPI::PopupPlayer* mPlayer;
};
