// One page of an application: its full-screen element, commands, actions, hidden data and requests.
#include "AGPIppScreen.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppScreen.cpp"

#include <algorithm>
#include <sstream>
#include <string_view>

#include "AGPCommandListener.h"
#include "AGPDataObserver.h"
#include "AGPDisplayable.h"
#include "AGPGUIHandler.h"
#include "AGPIppAction.h"
#include "AGPIppCommand.h"
#include "AGPIppHidden.h"
#include "AGPIppKey.h"
#include "AGPIppTicker.h"
#include "AGPKey.h"
#include "AGPMessageQueueHandler.h"
#include "AGPPhoneletManager.h"
#include "AGPServerConnection.h"
#include "AGPUrl.h"
#include "AGPUtils.h"
#include "uri/GPALAdmin.h"

using namespace std::string_view_literals;

const std::string AGPIppScreen::AGPSound_PARSE_FAILED = "PARSE_FAILED";

namespace {

// A bad or negative number counts as 0, like a missing attribute.
std::uint32_t parseCount(const std::string& text) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        return 0;
    }
    return static_cast<std::uint32_t>(number);
}

bool isFullScreenType(AGPObjectTypeInfo::AGPObjectType type) {
    switch (type) {
    case AGPObjectTypeInfo::ti_IppAlert:
    case AGPObjectTypeInfo::ti_IppList:
    case AGPObjectTypeInfo::ti_IppTable:
    case AGPObjectTypeInfo::ti_IppTextBox:
    case AGPObjectTypeInfo::ti_IppForm:
    case AGPObjectTypeInfo::ti_IppPlayer:
        return true;
    default:
        return false;
    }
}

} // namespace

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

bool AGPIppScreen::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_IppKey:
        return addAGPIppKey(child);
    case AGPObjectTypeInfo::ti_IppAlert:
        return addChoiceAGPIppAlert(child);
    case AGPObjectTypeInfo::ti_IppList:
        return addChoiceAGPIppList(child);
    case AGPObjectTypeInfo::ti_IppTable:
        return addChoiceAGPIppTable(child);
    case AGPObjectTypeInfo::ti_IppTextBox:
        return addChoiceAGPIppTextBox(child);
    case AGPObjectTypeInfo::ti_IppForm:
        return addChoiceAGPIppForm(child);
    case AGPObjectTypeInfo::ti_IppPlayer:
        return addChoiceAGPIppPlayer(child);
    case AGPObjectTypeInfo::ti_IppAction:
        return addAGPIppAction(child);
    case AGPObjectTypeInfo::ti_IppCommand:
        return addAGPIppCommand(child);
    case AGPObjectTypeInfo::ti_IppHidden:
        return addAGPIppHidden(child);
    case AGPObjectTypeInfo::ti_IppTicker:
        return addAGPIppTicker(child);
    default:
        return false;
    }
}

bool AGPIppScreen::addAttribute(std::string& name, std::string& value) {
    if (name == "ID"sv) {
        mID = parseCount(value);
        return true;
    }
    if (name == "CommandCount"sv) {
        mCommandCount = parseCount(value);
        return true;
    }
    if (name == "HiddenCount"sv) {
        mHiddenCount = parseCount(value);
        return true;
    }
    if (name == "History"sv) {
        mHistory = value == "NO" ? HISTORY_NO : HISTORY_YES;
        return true;
    }
    if (name == "Sound"sv) {
        std::istringstream tokens(value);
        std::string first;
        if (!(tokens >> first)) {
            mSound = AGPSound_PARSE_FAILED;
            return false;
        }
        mSound = first;
        return true;
    }
    return false;
}

bool AGPIppScreen::isValidContainer() {
    return isCountValidAGPIppKey() && isCountValidChoice() && isCountValidAGPIppAction() &&
           isCountValidAGPIppCommand() && isCountValidAGPIppHidden() && isCountValidAGPIppTicker();
}

AGPDisplayable* AGPIppScreen::getDisplayableElement() {
    for (AGPCommonBase* child : mChildren) {
        if (isFullScreenType(child->getAGPObjectType())) {
            return static_cast<AGPDisplayable*>(child);
        }
    }
    return nullptr;
}

void AGPIppScreen::initializeElement() {
    initKeyElement();
    AGPDisplayable* displayable = getDisplayableElement();
    if (displayable == nullptr) {
        return;
    }
    std::vector<AGPCommonBase*> commands;
    getChildrenByType(AGPObjectTypeInfo::ti_IppCommand, commands);
    const size_t used = std::min<size_t>(mCommandCount, commands.size());
    for (size_t i = 0; i < used; ++i) {
        auto* command = static_cast<AGPIppCommand*>(commands[i]);
        displayable->setCommandElement(*command);
        if (command->getMessageType() == AGPMessage::Command_Back) {
            mHasBackCommand = true;
        }
    }
    initDisplayableElement(displayable);
    displayable->setSendURLListener(this);
}

// Typed keys go to the list's URL; a screen without a list has nowhere to send them.
void AGPIppScreen::initKeyElement() {
    auto* key = static_cast<AGPIppKey*>(getChildByType(AGPObjectTypeInfo::ti_IppKey));
    if (key == nullptr) {
        return;
    }
    AGPCommonBase* list = getChildByType(AGPObjectTypeInfo::ti_IppList);
    if (list == nullptr) {
        key->setSendKeys(AGPIppKey::SENDKEYS_NO);
        return;
    }
    key->setSendURLListener(this);
    key->setTargetUrl(static_cast<AGPUrl*>(list->getChildByType(AGPObjectTypeInfo::ti_Url)));
}

void AGPIppScreen::reDisplayElement() {
    AGPDisplayable* displayable = getDisplayableElement();
    if (displayable != nullptr) {
        initDisplayableElement(displayable);
    }
}

void AGPIppScreen::initDisplayableElement(AGPDisplayable* displayable) {
    if (displayable == nullptr) {
        return;
    }
    AGPCommonBase* ticker = getChildByType(AGPObjectTypeInfo::ti_IppTicker);
    if (ticker != nullptr) {
        displayable->setTickerElement(*static_cast<AGPIppTicker*>(ticker));
    }
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    displayable->initTimer(gui != nullptr ? gui->getCommandListener() : nullptr);
}

bool AGPIppScreen::hasBack() {
    if (mHasBackCommand) {
        return true;
    }
    AGPDisplayable* displayable = getDisplayableElement();
    return displayable != nullptr && displayable->hasBack();
}

void AGPIppScreen::invokeActions() {
    bool done[AGPIppAction::TYPE_NOT_GIVEN] = {};
    std::vector<AGPCommonBase*> actions;
    getChildrenByType(AGPObjectTypeInfo::ti_IppAction, actions);
    for (AGPCommonBase* child : actions) {
        auto* action = static_cast<AGPIppAction*>(child);
        const AGPIppAction::AGPType type = action->getAGPType();
        if (type < 0 || type >= AGPIppAction::TYPE_NOT_GIVEN || done[type]) {
            continue;
        }
        done[type] = true;
        action->invoke();
    }
}

void AGPIppScreen::gainedFocus() {
    notifyScreenGainedFocus();
}

void AGPIppScreen::lostFocus() {
    notifyScreenLostFocus();
}

void AGPIppScreen::setCacheExpirationTime(long seconds) {
    mCacheExpirationTime = seconds;
}

void AGPIppScreen::addHiddenData(std::multimap<std::string, std::string>& keyValues) {
    std::vector<AGPCommonBase*> hiddens;
    getChildrenByType(AGPObjectTypeInfo::ti_IppHidden, hiddens);
    const size_t used = std::min<size_t>(mHiddenCount, hiddens.size());
    AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
    for (size_t i = 0; i < used; ++i) {
        auto* hidden = static_cast<AGPIppHidden*>(hiddens[i]);
        const std::string key = hidden->getAGPKey() != nullptr ? hidden->getAGPKey()->getValueText() : "null";
        std::string value;
        switch (hidden->getAGPType()) {
        case AGPIppHidden::PHONENUMBER:
            value = configuration != nullptr ? configuration->getSubscriberNumber() : std::string();
            break;
        case AGPIppHidden::IPADDRESS:
            value = configuration != nullptr ? configuration->getLocalIPAddress() : std::string();
            break;
        case AGPIppHidden::VALUE:
        case AGPIppHidden::TYPE_NOT_GIVEN: {
            AGPCommonBase* valueChild = hidden->getChildByType(AGPObjectTypeInfo::ti_Value);
            value = valueChild != nullptr ? valueChild->getContent() : std::string();
            break;
        }
        }
        keyValues.insert(std::make_pair(key, value));
    }
}

void AGPIppScreen::appendUrlParamSeparator(std::string& url) {
    url += url.find('?') == std::string::npos ? "?" : "&";
}

void AGPIppScreen::appendUrlEncodedKeyValues(std::multimap<std::string, std::string>& keyValues,
                                             std::string& url) {
    if (keyValues.empty()) {
        return;
    }
    appendUrlParamSeparator(url);
    bool first = true;
    for (const auto& pair : keyValues) {
        std::string key;
        std::string value;
        GPALAdmin::encodeUri(pair.first, key, true, true);
        GPALAdmin::encodeUri(pair.second, value, true, true);
        if (!first) {
            url += "&";
        }
        first = false;
        url += key;
        url += "=";
        url += value;
    }
}

void AGPIppScreen::sendURL(AGPDisplayable*, std::multimap<std::string, std::string>& keyValues,
                           std::string& url) {
    addHiddenData(keyValues);
    appendUrlEncodedKeyValues(keyValues, url);
    remoteTrace("Sending request to url:\n\n" + url);
    queueRequest(AGPMessage::UrlRequest_XML, url);
}

void AGPIppScreen::sendExitURL(AGPDisplayable*, std::multimap<std::string, std::string>& keyValues,
                               std::string& url) {
    addHiddenData(keyValues);
    appendUrlEncodedKeyValues(keyValues, url);
    remoteTrace(url.empty() ? std::string("Exit request without url")
                            : "Sending exit request to url:\n\n" + url);
    queueRequest(AGPMessage::UrlRequest_Exit, url);
}

void AGPIppScreen::resendOriginatingURL(bool back) {
    if (mOriginatingUri.empty()) {
        return;
    }
    remoteTrace("Sending request to originating url:\n\n" + mOriginatingUri);
    queueRequest(back ? AGPMessage::UrlRequest_XML_cache_expired_back
                      : AGPMessage::UrlRequest_XML_cache_expired_screenId,
                 mOriginatingUri);
}

void AGPIppScreen::queueRequest(AGPMessage::MessageType type, const std::string& url) {
    AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler();
    if (queues == nullptr) {
        return;
    }
    AGPMessage message(type, url);
    queues->addToMessageQueue(message, mQueueID);
}
