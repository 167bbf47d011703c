// Base of the full-screen elements: their widget, commands, automatic timer and requests.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "AGPCommonBase.h"
#include "AGPIppCommand.h"

class AGPIppTicker;
class AGPSendURLListenerIfc;

namespace DisplayAPI {
class Alert;
class Command;
class CommandListener;
class Displayable;
class Timer;
} // namespace DisplayAPI

class AGPDisplayable : public AGPCommonBase {
public:
    AGPDisplayable();
    AGPDisplayable(const AGPDisplayable&) = delete;
    AGPDisplayable& operator=(const AGPDisplayable&) = delete;
    // Deletes the timer; the commands belong to the screen.
    ~AGPDisplayable() override;

    virtual DisplayAPI::Displayable* getDisplayAPIDisplayable() = 0;
    virtual void setTickerElement(AGPIppTicker& ticker);
    virtual void setCommandElement(AGPIppCommand& command);
    virtual void setSendURLListener(AGPSendURLListenerIfc* listener);
    virtual AGPSendURLListenerIfc* getSendURLListener();
    virtual void startTimer();
    virtual void stopTimer();
    virtual void setHighlight(bool on);
    virtual void restoreFocusAndHighlight();
    virtual bool isContextMenuDisplayed();
    virtual bool isPopupMenuDisplayed();
    virtual void pushRequestIndication();
    virtual void processNotifyEvent(AGPIppCommand::AGPEvent event);
    virtual bool hasBack();
    // Sends a normal request to the element's Url; nothing without a Url.
    virtual void reReadFromUrl(std::multimap<std::string, std::string>& keyValues);
    // Sends an exit request, with or without a Url.
    virtual void exitURL(std::multimap<std::string, std::string>& keyValues);
    virtual void createTimer(DisplayAPI::CommandListener* listener, unsigned int milliseconds);

    void initTimer(DisplayAPI::CommandListener* listener);
    void setTimerCommand(AGPIppCommand* command);
    void observeEventCommand(AGPIppCommand* command);
    AGPIppCommand* findObservedEventCommand(AGPIppCommand::AGPEvent event);
    // The content of the Url child, or the empty text.
    std::string getUrl();

    // Carries out the command observed for a focus event: an action runs; any other command sends
    // its pair to the element's Url, after the element's own selection for a SELECT.
    void runObservedEventCommand(AGPIppCommand::AGPEvent event);
    // For elements with an input alert of their own (form, text box): gaining the focus while
    // `inputAlert` is pending shows it again; otherwise the observed command runs.
    void processNotifyEventWithInputAlert(AGPIppCommand::AGPEvent event, DisplayAPI::Alert* inputAlert);

    AGPIppCommand* getTimerCommand() const { return mTimerCommand; }
    DisplayAPI::Timer* getTimer() const { return mTimer; }
    bool isTimerRunning() const { return mTimerRunning; }
    std::uint32_t getTimerDuration() const { return mTimerDuration; }

protected:
    // The pairs that a SELECT event command sends besides its own: the element's selection.
    virtual void addSelectedPairs(std::multimap<std::string, std::string>& /*keyValues*/) {}

    AGPSendURLListenerIfc* mSendURLListener;
    DisplayAPI::Timer* mTimer;
    DisplayAPI::CommandListener* mTimerListener;
    bool mTimerRunning;
    std::uint32_t mTimerDuration;
    AGPIppCommand* mTimerCommand;
    DisplayAPI::Command* mTimerWidgetCommand;
    std::vector<AGPIppCommand*> mObservedEventCommands;
};
