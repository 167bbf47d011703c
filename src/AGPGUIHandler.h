// The presentation core: the one object that drives the widget library for the whole application.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "AGPDateTimeChangeListenerIfc.h"
#include "AGPIppCommand.h"
#include "AGPMessage.h"
#include "AGPObjectTypeInfo.h"
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
    // The life-cycle calls come on the host's thread, which never touches an element: what they
    // need of one is done on the element's queue thread, so show (with the tab bar in use),
    // tabStatusChange and tab finish after they return.
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
    // The identifier of the displayable element shown now (0 for none); safe on any thread.
    AGPId getCurrentDisplayableId();

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
    // `heldLock`, when given, is held by the caller and is given up while the alert is shown. A
    // caller on another queue's thread (`callerQueue`) leaves the showing to `queue`'s thread.
    void showAlertForQueueIfSet(AGPQueueNumber queue, bool bringToFront, Semaphore* heldLock,
                                AGPQueueNumber callerQueue);

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
    // Trims every queue's cache; only when no queue thread runs (the destructor).
    void cleanupCacheAndHistory(int maxSize);
    // Trims `queue`'s cache to `maxSize` screens, oldest first, never its screen on show; on
    // `queue`'s own thread.
    void trimCacheAndHistory(AGPQueueNumber queue, int maxSize);
    void reloadScreenElements(AGPIppScreen* screen);

    void notifyEvent(AGPQueueNumber queue, AGPIppCommand::AGPEvent event);
    // The same from a thread other than the queue's: the queue's thread tells its element.
    void notifyEventOnQueue(AGPQueueNumber queue, AGPIppCommand::AGPEvent event);
    // Runs `work` on `queue`'s thread, the only one that may use that queue's elements.
    void runOnQueue(AGPQueueNumber queue, std::function<void()> work);
    // Each shown element is told on its own queue's thread, later.
    void setSelectionHighlight(bool on);
    // On `element`'s queue thread.
    bool agpDisplayableIsCurrentAndUnobscured(AGPDisplayable* element);

    void setCurrentDisplayableForTabAtIndexInternal(AGPQueueNumber queue, DisplayAPI::Displayable* widget,
                                                    AGPMessage::MessageType type, bool bringToFront);
    // Moves what the first tab showed on its own into its tab, on that tab's queue thread (later,
    // when `queue` is another); with `showTabScreen` the display shows the tab screen from then on.
    void pullFirstTabDisplayableIntoTabScreen(AGPQueueNumber queue, bool bringToFront,
                                              bool showTabScreen = false);
    DisplayAPI::Displayable* removeFirstTabOutOfTabScreen();

    void addFocusListener(AGPPhoneletFocusListenerIfc* listener);
    void removeFocusListener(AGPPhoneletFocusListenerIfc* listener);

    // The phone's format texts; a change of format is told to every date/time listener, in
    // registration order, on the caller's thread.
    void setDateFormat(const std::string& format);
    void setTimeFormat(const std::string& format);
    AGPDateTimeChangeListenerIfc::AGPDateFormat getDateFormat() const { return mDateFormat; }
    AGPDateTimeChangeListenerIfc::AGPTimeFormat getTimeFormat() const { return mTimeFormat; }
    // Listeners are kept without a duplicate check; removing one removes every occurrence. A
    // listener that changes its widgets takes lockDateTimeListeners() around the change, so that
    // no notification reaches a widget being deleted.
    void addDateTimeChangeListener(AGPDateTimeChangeListenerIfc* listener);
    void removeDateTimeChangeListener(AGPDateTimeChangeListenerIfc* listener);
    std::unique_lock<std::recursive_mutex> lockDateTimeListeners() {
        return std::unique_lock<std::recursive_mutex>(mDateTimeListenerLock);
    }

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
    // Focus requests and releases decided while the GUI lock is held go to the platform only
    // once it is released: the platform may call straight back into show or hide. Declared
    // before the lock's CriticalSection, so that it runs after the lock is given back.
    enum DeferredFocusAction { FocusNone = 0, FocusRequest = 1, FocusRelease = 2 };
    class DeferredFocus {
    public:
        explicit DeferredFocus(AGPGUIHandler& handler) : mHandler(handler) {}
        ~DeferredFocus() { mHandler.applyDeferredFocus(); }
        DeferredFocus(const DeferredFocus&) = delete;
        DeferredFocus& operator=(const DeferredFocus&) = delete;

    private:
        AGPGUIHandler& mHandler;
    };
    void releaseFocusLater(bool bringToFront);
    void applyDeferredFocus();

    void notifyFocusListeners(FocusNotification notification);
    void showFullDisplayable(DisplayAPI::Displayable* widget, AGPQueueNumber queue,
                             AGPMessage::MessageType type, bool bringToFront);
    // Makes the display show nothing and then `widget`, so a popup is raised even when current.
    void showOver(DisplayAPI::Displayable* widget);
    // Called with the GUI lock held; gives it back while it waits for the previous screen.
    void showPopupForced(DisplayAPI::Displayable* widget, AGPQueueNumber queue, bool isAlert,
                         bool bringToFront);
    // The move itself, on the first tab's queue thread (`queue`); `showItsAlert` when that tab has
    // an alert waiting.
    void pullFirstTabOfQueue(AGPQueueNumber queue, bool showItsAlert, bool bringToFront);
    // After a tab switch, on the new tab's queue thread: its popup again, or its screen's focus.
    void focusTabQueue(AGPQueueNumber next);
    void selectTabOfQueue(AGPQueueNumber queue);
    bool isCurrentTabQueue(AGPQueueNumber queue);
    void closeTab(AGPQueueNumber queue);
    void clearQueueSlots(AGPQueueNumber queue);
    // Ends show() once it is known whether a context menu is open; nothing if hidden meanwhile.
    void showNow(bool contextMenuOpen);
    // The identifier of the element the focus logic looks at, and its queue (0 for none): the
    // current tab's with two or more tabs, else the display's. Safe on any thread.
    AGPId currentOwner(AGPQueueNumber* queue);
    // Runs `use` on `queue`'s thread with element `id`, or with null if it is gone by then.
    void useOnQueue(AGPId id, AGPQueueNumber queue, std::function<void(AGPCommonBase*)> use);
    // Whether `element`'s own widget (not one of its popups) is what its queue shows now.
    bool showsOwnWidget(AGPDisplayable* element);
    void setSelectionHighlightOf(AGPDisplayable* element, bool on);
    // The rest of tabStatusChange(false), on the queue thread of `object` (null: none shown).
    void focusLeftTabBar(AGPCommonBase* object, AGPQueueNumber queue);
    // A tab switch is decided on the current tab's queue thread; when another tab came to the
    // front meanwhile, it moves on to that tab's queue, a bounded number of times.
    void switchTabOnQueue(AGPQueueNumber queue, int direction, int hops);
    void switchTab(AGPQueueNumber queue, int direction, int hops);
    // Tells the element on show in `visibleQueue` (first with ONBLUR when `blur`) that a push
    // for `queue` arrived, on `visibleQueue`'s thread.
    void indicatePushTo(AGPQueueNumber visibleQueue, AGPQueueNumber queue, bool blur);
    // The element `owner` when it is `queue`'s own, for `queue`'s thread; else null.
    AGPCommonBase* ownElementOf(AGPId owner, AGPQueueNumber queue);
    // The type (ti_NoType for none) and queue of what the display shows, asked by identifier.
    AGPObjectTypeInfo::AGPObjectType typeOfShown(AGPQueueNumber* queue);
    bool validQueue(AGPQueueNumber queue) const { return queue >= 0 && queue < QUEUE_COUNT; }
    size_t tabCount() const;
    bool hasTab(AGPTab tab) const;
    std::map<AGPTab, int> tabMapCopy() const;

    DisplayAPI::Display* mDisplay;
    Semaphore* mGUILock;
    // Flags of the life cycle and the tab bar: set by life-cycle calls on the host's thread and by
    // queue threads, read by both.
    std::atomic<bool> mVisible;
    bool mFirstDocumentPending;
    // Kept as the element identifier so that a widget deleted meanwhile is never touched.
    std::atomic<AGPId> mFirstTabDisplayable;
    DisplayAPI::TabScreen* mTabScreen;
    AGPCommandListener* mCommandListener;
    AGPMenuCommandListener* mMenuCommandListener;
    AGPItemStateListener* mItemStateListener;
    PhoneletManagerIfc* mPhoneletManager;
    // Written on the host's thread, read by the queue threads.
    std::atomic<AGPDateTimeChangeListenerIfc::AGPDateFormat> mDateFormat;
    std::atomic<AGPDateTimeChangeListenerIfc::AGPTimeFormat> mTimeFormat;
    std::recursive_mutex mDateTimeListenerLock;
    std::vector<AGPDateTimeChangeListenerIfc*> mDateTimeListeners;
    std::atomic<unsigned int> mMultiTabState;
    std::atomic<unsigned int> mFocusCounter;
    bool mNoControlKey;
    std::atomic<bool> mFirstTabPulled;
    std::atomic<bool> mTabSwitchOnPush;
    std::atomic<bool> mShown;
    // Orders hide() against the end of a show() that waited for a queue thread. Taken before
    // the GUI lock and the keys handler's lock (the focus listeners): nothing holding either may
    // call show or hide.
    std::recursive_mutex mShowLock;
    std::vector<DisplayAPI::Displayable*> mTabPlaceholders;
    // What the handler keeps per queue. Identifiers rather than pointers: the queue's thread may
    // destroy any screen at any time. The slots are written by the queue's thread and read by
    // every thread, hence atomic. Cache and history belong to the queue's thread alone (and to
    // the destructor, after the threads have stopped).
    struct QueueState {
        std::atomic<AGPId> currentScreen{0};
        std::atomic<AGPId> alert{0};
        std::atomic<AGPId> popupPlayer{0};
        std::vector<AGPId> cache;
        std::vector<AGPId> history;
    };
    QueueState mQueueState[QUEUE_COUNT];
    // Tab number to index in the tab screen. The host's thread reads it while queue threads
    // open and close tabs: every access holds mStateLock, which is held for nothing else.
    mutable std::mutex mStateLock;
    std::map<AGPTab, int> mTabMap;
    std::vector<AGPPhoneletFocusListenerIfc*> mFocusListeners;
    std::atomic<int> mDeferredFocus{FocusNone};
};
