// The presentation core: the one object that drives the widget library for the whole application.
#pragma once

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "AGPIppCommand.h"
#include "AGPMessage.h"
#include "AGPTypes.h"

class AGPCommandListener;
class AGPCommonBase;
class AGPDisplayable;
class AGPIppScreen;
class AGPItemStateListener;
class AGPMenuCommandListener;
class AGPPhoneletFocusListenerIfc;
class PhoneletManagerIfc;
class Semaphore;
class Translator;

namespace DisplayAPI {
class Alert;
class Display;
class Displayable;
class Form;
class List;
class PopupPlayer;
class TabScreen;
class Table;
class TextBox;
} // namespace DisplayAPI

class AGPGUIHandler {
public:
    using AGPTab = int;
    enum FocusNotification { FocusHidden = 0, FocusShown = 1 };
    static constexpr int CACHE_MAXSIZE = 20;
    static constexpr int QUEUE_COUNT = 4;

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
    AGPIppScreen* getCurrentScreen(AGPQueueNumber queue);
    AGPDisplayable* getCurrentDisplayable();

    // Installs a parsed document on `queue`. On true the tree belongs to the cache and `root`
    // designates the screen shown; on false the caller still owns (and deletes) `root`.
    bool processXmlTreeObject(AGPCommonBase*& root, AGPQueueNumber queue, AGPMessage::MessageType type,
                              const std::string& url, long cacheValidity, bool bringToFront);
    bool setIppDisplayAsRoot(AGPCommonBase*& root);

    void commandShowScreen(AGPIppScreen* screen, AGPQueueNumber queue, bool isBack,
                           AGPMessage::MessageType type, bool bringToFront);
    virtual void commandShowScreenBack(AGPQueueNumber queue, bool bringToFront);
    virtual void commandShowScreenID(unsigned int screenID, AGPQueueNumber queue, bool bringToFront);
    void commandAlertBack(AGPQueueNumber queue, bool bringToFront);
    void hidePopup(unsigned int screenID, AGPQueueNumber queue);
    // `heldLock`, when given, is held by the caller and is given up while the alert is shown.
    void showAlertForQueueIfSet(AGPQueueNumber queue, bool bringToFront, Semaphore* heldLock);

    virtual void showDisplayableForm(DisplayAPI::Form* widget, AGPQueueNumber queue,
                                     AGPMessage::MessageType type, bool bringToFront);
    void showDisplayableList(DisplayAPI::List* widget, AGPQueueNumber queue, AGPMessage::MessageType type,
                             bool bringToFront);
    void showDisplayableTable(DisplayAPI::Table* widget, AGPQueueNumber queue, AGPMessage::MessageType type,
                              bool bringToFront);
    void showDisplayableTextBox(DisplayAPI::TextBox* widget, AGPQueueNumber queue,
                                AGPMessage::MessageType type, bool bringToFront);
    void showDisplayable(DisplayAPI::Displayable* widget, AGPQueueNumber queue, AGPMessage::MessageType type,
                         bool bringToFront);
    void showDisplayableAlert(DisplayAPI::Alert* widget, AGPQueueNumber queue, unsigned long alertId,
                              AGPMessage::MessageType type, bool bringToFront);
    void showDisplayablePopupPlayer(DisplayAPI::PopupPlayer* widget, AGPQueueNumber queue,
                                    unsigned long playerId, AGPMessage::MessageType type, bool bringToFront);

    DisplayAPI::Displayable* findPreviousFullDisplayable(AGPQueueNumber queue, bool allowNoHistory = true);
    bool isInHistory(AGPIppScreen* screen, AGPQueueNumber queue);
    bool checkScreenID(AGPIppScreen* screen, AGPQueueNumber queue);
    bool eraseSameScreenID(AGPIppScreen* screen, AGPQueueNumber queue);
    void cleanupCacheAndHistory(int maxSize);
    void reloadScreenElements(AGPIppScreen* screen);

    void notifyEvent(AGPQueueNumber queue, AGPIppCommand::AGPEvent event);
    void setSelectionHighlight(bool on);
    void setSelectionHighlightForDisplayable(DisplayAPI::Displayable* widget, bool on);
    bool checkContextMenu();
    bool agpDisplayableIsCurrentAndUnobscured(AGPDisplayable* element, DisplayAPI::Displayable* widget);

    void setCurrentDisplayableForTabAtIndexInternal(AGPQueueNumber queue, DisplayAPI::Displayable* widget,
                                                    AGPMessage::MessageType type, bool bringToFront);
    void pullFirstTabDisplayableIntoTabScreen(AGPQueueNumber queue, bool bringToFront);
    DisplayAPI::Displayable* removeFirstTabOutOfTabScreen();

    void addFocusListener(AGPPhoneletFocusListenerIfc* listener);
    void removeFocusListener(AGPPhoneletFocusListenerIfc* listener);

    void setDateFormat(const std::string& format);
    void setTimeFormat(const std::string& format);
    const std::string& getDateFormat() const { return mDateFormat; }
    const std::string& getTimeFormat() const { return mTimeFormat; }

    void releaseFocus(bool bringToFront);
    void resetFocusCounter() { mFocusCounter = 0; }
    unsigned int getFocusCounter() const { return mFocusCounter; }
    unsigned int getMultiTabState() const { return mMultiTabState; }

    // Read access to the per-queue bookkeeping; an out-of-range queue gives an empty list or 0.
    std::vector<AGPId> getCache(AGPQueueNumber queue) const;
    std::vector<AGPId> getHistory(AGPQueueNumber queue) const;
    AGPId getAlertId(AGPQueueNumber queue) const;
    AGPId getPopupPlayerId(AGPQueueNumber queue) const;

    DisplayAPI::Display* getDisplay() const { return mDisplay; }
    DisplayAPI::TabScreen* getTabScreen() const { return mTabScreen; }
    AGPCommandListener* getCommandListener() const { return mCommandListener; }
    AGPMenuCommandListener* getMenuCommandListener() const { return mMenuCommandListener; }
    AGPItemStateListener* getItemStateListener() const { return mItemStateListener; }
    bool isVisible() const { return mVisible; }

private:
    void notifyFocusListeners(FocusNotification notification);
    void showFullDisplayable(DisplayAPI::Displayable* widget, AGPQueueNumber queue,
                             AGPMessage::MessageType type, bool bringToFront);
    // Makes the display show nothing and then `widget`, so a popup is raised even when current.
    void showOver(DisplayAPI::Displayable* widget);
    void showPopupForced(DisplayAPI::Displayable* widget, AGPQueueNumber queue, bool isAlert,
                         bool bringToFront);
    void selectTabOfQueue(AGPQueueNumber queue);
    bool isCurrentTabQueue(AGPQueueNumber queue);
    void closeTab(AGPQueueNumber queue);
    void clearQueueSlots(AGPQueueNumber queue);
    AGPCommonBase* elementOf(DisplayAPI::Displayable* widget);
    // The widget that the focus logic looks at: the current tab's with two or more tabs.
    DisplayAPI::Displayable* currentWidget(AGPQueueNumber* queue);
    bool validQueue(AGPQueueNumber queue) const { return queue >= 0 && queue < QUEUE_COUNT; }

    DisplayAPI::Display* mDisplay;
    Semaphore* mGUILock;
    bool mVisible;
    bool mFirstDocumentPending;
    // Kept as the element identifier so that a widget deleted meanwhile is never touched.
    AGPId mFirstTabDisplayable;
    DisplayAPI::TabScreen* mTabScreen;
    AGPCommandListener* mCommandListener;
    AGPMenuCommandListener* mMenuCommandListener;
    AGPItemStateListener* mItemStateListener;
    // Identifiers rather than pointers: a cached screen may be destroyed by a cleanup. Written by
    // the queue threads that install documents and read by the life-cycle calls on the host's
    // thread without the GUI lock, hence atomic.
    std::atomic<AGPId> mCurrentScreen[QUEUE_COUNT];
    PhoneletManagerIfc* mPhoneletManager;
    std::string mDateFormat;
    std::string mTimeFormat;
    unsigned int mMultiTabState;
    unsigned int mFocusCounter;
    bool mNoControlKey;
    bool mFirstTabPulled;
    bool mTabSwitchOnPush;
    bool mShown;
    std::vector<AGPId> mPopupPlayer;
    std::vector<AGPId> mAlert;
    std::vector<DisplayAPI::Displayable*> mTabPlaceholders;
    std::map<AGPTab, int> mTabMap;
    std::vector<AGPId> mCache[QUEUE_COUNT];
    std::vector<AGPId> mHistory[QUEUE_COUNT];
    std::vector<AGPPhoneletFocusListenerIfc*> mFocusListeners;
};
