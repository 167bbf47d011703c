// One page of an application: its full-screen element, commands, actions, hidden data and requests.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "AGPCommonBase.h"
#include "AGPMessage.h"
#include "AGPSendURLListenerIfc.h"

class AGPDisplayable;

class AGPIppScreen : public AGPCommonBase, public AGPSendURLListenerIfc {
public:
    enum AGPHistory : std::int32_t { HISTORY_YES = 0, HISTORY_NO = 1 };

    static const std::string AGPSound_PARSE_FAILED;

    AGPIppScreen();
    AGPIppScreen(const AGPIppScreen&) = delete;
    AGPIppScreen& operator=(const AGPIppScreen&) = delete;
    ~AGPIppScreen() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppScreen; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return isValidContainer(); }
    // Attaches commands, ticker, timer, send listener and key handling to the full-screen element.
    void initializeElement() override;
    void reDisplayElement() override;

    void sendURL(AGPDisplayable* sender, std::multimap<std::string, std::string>& keyValues,
                 std::string& url) override;
    void sendExitURL(AGPDisplayable* sender, std::multimap<std::string, std::string>& keyValues,
                     std::string& url) override;

    // The first IppAlert, IppList, IppTable, IppTextBox, IppForm or IppPlayer child, or null.
    AGPDisplayable* getDisplayableElement();
    void initKeyElement();
    void initDisplayableElement(AGPDisplayable* displayable);
    bool hasBack();
    void invokeActions();
    void gainedFocus();
    void lostFocus();
    // Queues the originating URI again, as a back or a screen-by-ID re-request.
    void resendOriginatingURL(bool back);

    void setCacheExpirationTime(long seconds);
    long getCacheExpirationTime() const { return mCacheExpirationTime; }
    void setOriginatingUri(const std::string& uri) { mOriginatingUri = uri; }
    std::string getOriginatingUri() const { return mOriginatingUri; }
    void setRedisplayNeeded(bool needed) { mRedisplayNeeded = needed; }
    bool isRedisplayNeeded() const { return mRedisplayNeeded; }
    bool hasBackCommand() const { return mHasBackCommand; }

    unsigned int getAGPID() const { return mID; }
    AGPHistory getAGPHistory() const { return mHistory; }
    unsigned int getAGPCommandCount() const { return mCommandCount; }
    unsigned int getAGPHiddenCount() const { return mHiddenCount; }
    std::string getAGPSound() const { return mSound; }

    // Adds the pairs of the first HiddenCount IppHidden children.
    void addHiddenData(std::multimap<std::string, std::string>& keyValues);
    static void appendUrlParamSeparator(std::string& url);
    static void appendUrlEncodedKeyValues(std::multimap<std::string, std::string>& keyValues,
                                          std::string& url);

    bool isValidContainer();
    bool isCountValidAGPIppKey() { return mIppKeyCount.isCountValid(); }
    bool isCountValidChoice() { return mChoiceCount.isCountValid(); }
    bool isCountValidAGPIppAction() { return mIppActionCount.isCountValid(); }
    bool isCountValidAGPIppCommand() { return mIppCommandCount.isCountValid(); }
    bool isCountValidAGPIppHidden() { return mIppHiddenCount.isCountValid(); }
    bool isCountValidAGPIppTicker() { return mIppTickerCount.isCountValid(); }

private:
    bool addAGPIppKey(AGPCommonBase& child) { return addCountedChild(mIppKeyCount, child); }
    bool addChoiceAGPIppAlert(AGPCommonBase& child) { return addCountedChild(mChoiceCount, child); }
    bool addChoiceAGPIppList(AGPCommonBase& child) { return addCountedChild(mChoiceCount, child); }
    bool addChoiceAGPIppTable(AGPCommonBase& child) { return addCountedChild(mChoiceCount, child); }
    bool addChoiceAGPIppTextBox(AGPCommonBase& child) { return addCountedChild(mChoiceCount, child); }
    bool addChoiceAGPIppForm(AGPCommonBase& child) { return addCountedChild(mChoiceCount, child); }
    bool addChoiceAGPIppPlayer(AGPCommonBase& child) { return addCountedChild(mChoiceCount, child); }
    bool addAGPIppAction(AGPCommonBase& child) { return addCountedChild(mIppActionCount, child); }
    bool addAGPIppCommand(AGPCommonBase& child) { return addCountedChild(mIppCommandCount, child); }
    bool addAGPIppHidden(AGPCommonBase& child) { return addCountedChild(mIppHiddenCount, child); }
    bool addAGPIppTicker(AGPCommonBase& child) { return addCountedChild(mIppTickerCount, child); }
    void queueRequest(AGPMessage::MessageType type, const std::string& url);

    AGPChildCount mIppKeyCount;
    AGPChildCount mChoiceCount;
    AGPChildCount mIppActionCount;
    AGPChildCount mIppCommandCount;
    AGPChildCount mIppHiddenCount;
    AGPChildCount mIppTickerCount;
    std::uint32_t mHiddenCount;
    std::uint32_t mCommandCount;
    std::uint32_t mID;
    std::string mSound;
    AGPHistory mHistory;
    std::int64_t mCacheExpirationTime; // 64 bits: a long max-age or a late Expires passes 2038
    bool mRedisplayNeeded;
    bool mHasBackCommand;
    std::string mOriginatingUri;
};
