// The presentation core: the one object that drives the widget library for the whole application.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "AGPMessage.h"
#include "AGPTypes.h"

class AGPCommandListener;
class AGPCommonBase;
class AGPItemStateListener;
class AGPMenuCommandListener;
class AGPPhoneletFocusListenerIfc;
class PhoneletManagerIfc;
class Semaphore;
class Translator;

namespace DisplayAPI {
class Display;
class Displayable;
class TabScreen;
} // namespace DisplayAPI

class AGPGUIHandler {
public:
    using AGPTab = int;
    enum FocusNotification { FocusHidden = 0, FocusShown = 1 };
    static constexpr int CACHE_MAXSIZE = 20;

    AGPGUIHandler();
    virtual ~AGPGUIHandler();
    AGPGUIHandler(const AGPGUIHandler&) = delete;
    AGPGUIHandler& operator=(const AGPGUIHandler&) = delete;

    bool startAGPGUIHandler(DisplayAPI::Display* display, PhoneletManagerIfc* phoneletManager);
    // Asks the platform to stop this phonelet; the stop itself comes later through the life cycle.
    void stopPhonelet();
    void show();
    void hide();
    void tabStatusChange(bool active);
    void phoneletTabStatusChange(AGPMessage& message, AGPQueueNumber queue);
    void tab(int direction);

    bool initTabScreen(AGPTab tab, Translator* translator);
    bool initTab(AGPTab tab, Translator* translator);
    bool isTabInitialized(AGPTab tab) const;
    AGPQueueNumber tabIdxToQueueId(int tabIndex) const;
    int queueIdToTabIdx(AGPQueueNumber queue) const;
    AGPQueueNumber getMessageQueueIdForCurrent();

    // Installs a parsed document on `queue`. Until the screen elements exist no document can be
    // shown, so every tree is refused and its owner deletes it.
    bool processXmlTreeObject(AGPCommonBase* root, AGPQueueNumber queue, AGPMessage::MessageType type,
                              const std::string& url, long cacheValidity, bool bringToFront);

    // Leaves the queue's alert when it belongs to the screen of that ID.
    void hidePopup(unsigned int screenID, AGPQueueNumber queue);

    void addFocusListener(AGPPhoneletFocusListenerIfc* listener);
    void removeFocusListener(AGPPhoneletFocusListenerIfc* listener);

    void setDateFormat(const std::string& format);
    void setTimeFormat(const std::string& format);
    const std::string& getDateFormat() const { return mDateFormat; }
    const std::string& getTimeFormat() const { return mTimeFormat; }

    void releaseFocus(bool bringToFront);
    void resetFocusCounter() { mFocusCounter = 0; }

    DisplayAPI::Display* getDisplay() const { return mDisplay; }
    DisplayAPI::TabScreen* getTabScreen() const { return mTabScreen; }
    AGPCommandListener* getCommandListener() const { return mCommandListener; }
    AGPMenuCommandListener* getMenuCommandListener() const { return mMenuCommandListener; }
    AGPItemStateListener* getItemStateListener() const { return mItemStateListener; }
    bool isVisible() const { return mVisible; }

private:
    void notifyFocusListeners(FocusNotification notification);

    DisplayAPI::Display* mDisplay;
    Semaphore* mGUILock;
    bool mVisible;
    DisplayAPI::TabScreen* mTabScreen;
    AGPCommandListener* mCommandListener;
    AGPMenuCommandListener* mMenuCommandListener;
    AGPItemStateListener* mItemStateListener;
    PhoneletManagerIfc* mPhoneletManager;
    std::string mDateFormat;
    std::string mTimeFormat;
    unsigned int mMultiTabState;
    unsigned int mFocusCounter;
    bool mNoControlKey;
    bool mShown;
    std::vector<DisplayAPI::Displayable*> mTabPlaceholders;
    std::map<AGPTab, int> mTabMap;
    std::vector<AGPPhoneletFocusListenerIfc*> mFocusListeners;
};
