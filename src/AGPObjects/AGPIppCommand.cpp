// A command of a screen: soft key, menu entry, automatic timer or reaction to a focus event.
#include "AGPIppCommand.h"

AGPIppCommand::AGPIppCommand()
    : mLabelCount(0, 1), mScreenIDCount(0, 1), mIppActionCount(0, 3), mType(TYPE_NOT_GIVEN),
      mTypeGiven(false), mPriority(0), mAuto(0), mDisplayOn(DISPLAYON_DEFAULT), mSelect(SELECT_NO),
      mDefault(DEFAULT_NO), mEvent(EVENT_NONE), mKey(nullptr), mValue(nullptr),
      mMessageType(AGPMessage::Command_Error), mMenuCommand(nullptr) {
    registerElement();
}
AGPIppCommand::~AGPIppCommand() {
    unregisterElement();
}
bool AGPIppCommand::addChild(AGPCommonBase&) {
    return false;
}
bool AGPIppCommand::addAttribute(std::string&, std::string&) {
    return false;
}
bool AGPIppCommand::addContent(std::string&) {
    return false;
}
bool AGPIppCommand::isValid() {
    return false;
}
void AGPIppCommand::initializeElement() {}
void AGPIppCommand::gatherKeyValues(std::multimap<std::string, std::string>&) {}
unsigned int AGPIppCommand::getScreenID() {
    return 0;
}
std::string AGPIppCommand::getLabelText() {
    return "";
}
void AGPIppCommand::invokeAction() {}
bool AGPIppCommand::operator==(AGPIppCommand& other) {
    return this == &other;
}
bool AGPIppCommand::compareByPriority(AGPIppCommand* a, AGPIppCommand* b) {
    return a->mPriority < b->mPriority;
}
bool AGPIppCommand::compareByUniqueness(AGPIppCommand* a, AGPIppCommand* b) {
    return a != b;
}
void AGPIppCommand::removeDuplicitCommands(std::vector<AGPIppCommand*>&) {}
