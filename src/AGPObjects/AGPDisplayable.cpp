// Base of the full-screen elements: their widget, commands, automatic timer and requests.
#include "AGPDisplayable.h"

AGPDisplayable::AGPDisplayable()
    : mSendURLListener(nullptr), mTimer(nullptr), mTimerListener(nullptr), mTimerRunning(false),
      mTimerDuration(0), mTimerCommand(nullptr), mTimerWidgetCommand(nullptr) {}
AGPDisplayable::~AGPDisplayable() = default;
void AGPDisplayable::setTickerElement(AGPIppTicker&) {}
void AGPDisplayable::setCommandElement(AGPIppCommand&) {}
void AGPDisplayable::setSendURLListener(AGPSendURLListenerIfc* listener) {
    mSendURLListener = listener;
}
AGPSendURLListenerIfc* AGPDisplayable::getSendURLListener() {
    return mSendURLListener;
}
void AGPDisplayable::startTimer() {}
void AGPDisplayable::stopTimer() {}
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
void AGPDisplayable::reReadFromUrl(std::multimap<std::string, std::string>&) {}
void AGPDisplayable::exitURL(std::multimap<std::string, std::string>&) {}
void AGPDisplayable::createTimer(DisplayAPI::CommandListener*, unsigned int) {}
void AGPDisplayable::initTimer(DisplayAPI::CommandListener*) {}
void AGPDisplayable::setTimerCommand(AGPIppCommand*) {}
void AGPDisplayable::observeEventCommand(AGPIppCommand*) {}
AGPIppCommand* AGPDisplayable::findObservedEventCommand(AGPIppCommand::AGPEvent) {
    return nullptr;
}
std::string AGPDisplayable::getUrl() {
    return "";
}
