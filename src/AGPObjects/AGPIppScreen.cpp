// One page of an application: its full-screen element, commands, actions, hidden data and requests.
#include "AGPIppScreen.h"

#include "AGPServerConnection.h"

const std::string AGPIppScreen::AGPSound_PARSE_FAILED = "PARSE_FAILED";

AGPIppScreen::AGPIppScreen()
    : mIppKeyCount(0, 1), mChoiceCount(0, 1), mIppActionCount(0, 3), mIppCommandCount(0, -1),
      mIppHiddenCount(0, -1), mIppTickerCount(0, 1), mHiddenCount(0), mCommandCount(0), mID(0),
      mHistory(HISTORY_YES), mCacheExpirationTime(AGPServerConnection::CACHE_TIMEVALID_FOREVER),
      mRedisplayNeeded(false), mHasBackCommand(false) {
    registerElement();
}
AGPIppScreen::~AGPIppScreen() {
    unregisterElement();
}
bool AGPIppScreen::addChild(AGPCommonBase&) {
    return false;
}
bool AGPIppScreen::addAttribute(std::string&, std::string&) {
    return false;
}
void AGPIppScreen::initializeElement() {}
void AGPIppScreen::reDisplayElement() {}
void AGPIppScreen::sendURL(AGPDisplayable*, std::multimap<std::string, std::string>&, std::string&) {}
void AGPIppScreen::sendExitURL(AGPDisplayable*, std::multimap<std::string, std::string>&, std::string&) {}
AGPDisplayable* AGPIppScreen::getDisplayableElement() {
    return nullptr;
}
void AGPIppScreen::initDisplayableElement(AGPDisplayable*) {}
bool AGPIppScreen::hasBack() {
    return false;
}
void AGPIppScreen::invokeActions() {}
void AGPIppScreen::gainedFocus() {}
void AGPIppScreen::lostFocus() {}
void AGPIppScreen::resendOriginatingURL(bool) {}
void AGPIppScreen::setCacheExpirationTime(long seconds) {
    mCacheExpirationTime = static_cast<std::int32_t>(seconds);
}
void AGPIppScreen::addHiddenData(std::multimap<std::string, std::string>&) {}
void AGPIppScreen::appendUrlParamSeparator(std::string&) {}
void AGPIppScreen::appendUrlEncodedKeyValues(std::multimap<std::string, std::string>&, std::string&) {}
bool AGPIppScreen::isValidContainer() {
    return false;
}
void AGPIppScreen::queueRequest(AGPMessage::MessageType, const std::string&) {}
