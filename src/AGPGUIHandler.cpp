// The presentation core: the one object that drives the widget library for the whole application.
#include "AGPGUIHandler.h"

#define AGP_LOG_MODULE "AGPGUIHandler"
#define AGP_LOG_SOURCE "./src/AGPGUIHandler.cpp"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <thread>

#include "AGPCommandListener.h"
#include "AGPDataObserver.h"
#include "AGPDisplayable.h"
#include "AGPIppDisplay.h"
#include "AGPIppScreen.h"
#include "AGPItemStateListener.h"
#include "AGPLog.h"
#include "AGPMenuCommandListener.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectMap.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletFocusListenerIfc.h"
#include "AGPPhoneletManager.h"
#include "display/Alert.h"
#include "display/Display.h"
#include "display/Form.h"
#include "display/List.h"
#include "display/PopupPlayer.h"
#include "display/TabScreen.h"
#include "display/Table.h"
#include "display/TextBox.h"
#include "phonelet/PhoneletManagerIfc.h"
#include "text/TranslationInfo.h"
#include "threads/CriticalSection.h"

namespace {

using Type = AGPObjectTypeInfo::AGPObjectType;

const int kMaxTabs = 3;
const AGPId kAllBitsSet = ~AGPId(0);

int tabScreenNumberFor(const std::string& controlKey) {
    if (controlKey == "2" || controlKey == "3" || controlKey == "4" || controlKey == "6") {
        return controlKey[0] - '0';
    }
    return 0;
}

std::string tabLabel(AGPDataObserver* configuration, int tab) {
    switch (tab) {
    case 0:
        return configuration->getTab1DisplayName();
    case 1:
        return configuration->getTab2DisplayName();
    default:
        return configuration->getTab3DisplayName();
    }
}

bool isFullScreenType(Type type) {
    return type == AGPObjectTypeInfo::ti_IppForm || type == AGPObjectTypeInfo::ti_IppList ||
           type == AGPObjectTypeInfo::ti_IppTable || type == AGPObjectTypeInfo::ti_IppTextBox;
}

bool isPopupType(Type type) {
    return type == AGPObjectTypeInfo::ti_IppAlert || type == AGPObjectTypeInfo::ti_IppPlayer;
}

const char* typeName(AGPCommonBase* element) {
    return AGPObjectTypeInfo::getTypeNameRef(element->getAGPObjectType()).c_str();
}

AGPCommonBase* lookUp(AGPId id) {
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    return id == 0 || map == nullptr ? nullptr : map->getAGPObject(id);
}

void destroyTree(AGPId id) {
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    if (map != nullptr && id != 0) {
        map->removeAGPObjectTree(id);
    }
}

// The displayable element behind any element of one of the six displayable kinds.
AGPDisplayable* asDisplayable(AGPCommonBase* element) {
    if (element == nullptr) {
        return nullptr;
    }
    const Type type = element->getAGPObjectType();
    return isFullScreenType(type) || isPopupType(type) ? dynamic_cast<AGPDisplayable*>(element) : nullptr;
}

AGPDisplayable* asDisplayableOfType(AGPCommonBase* element, Type type) {
    return element != nullptr && element->getAGPObjectType() == type ? asDisplayable(element) : nullptr;
}

AGPDisplayable* asFullScreen(AGPCommonBase* element) {
    return element != nullptr && isFullScreenType(element->getAGPObjectType()) ? asDisplayable(element)
                                                                               : nullptr;
}

AGPIppScreen* asScreen(AGPCommonBase* element) {
    return element != nullptr && element->getAGPObjectType() == AGPObjectTypeInfo::ti_IppScreen
               ? dynamic_cast<AGPIppScreen*>(element)
               : nullptr;
}

DisplayAPI::Displayable* widgetOf(AGPDisplayable* element) {
    return element != nullptr ? element->getDisplayAPIDisplayable() : nullptr;
}

void reportDisplayError(const char* detail) {
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (phonelet != nullptr) {
        std::string details(detail);
        phonelet->displayErrorRequest("xml.app.error.display", details);
    }
}

void requestPhoneletFocus() {
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (phonelet != nullptr) {
        phonelet->AGPRequestFocus();
    }
}

bool collectTree(AGPCommonBase* root, std::vector<AGPCommonBase*>& elements) {
    if (!AGPCommonBase::createTreeExplorationVector(root, elements)) {
        AGP_LOG(5, "Invalid tree detected");
        elements.clear();
        return false;
    }
    return true;
}

} // namespace

AGPGUIHandler::AGPGUIHandler()
    : mDisplay(nullptr), mGUILock(new Semaphore(1, 1, false)), mVisible(false), mFirstDocumentPending(true),
      mFirstTabDisplayable(0), mTabScreen(nullptr), mCommandListener(nullptr), mMenuCommandListener(nullptr),
      mItemStateListener(nullptr), mPhoneletManager(nullptr),
      mDateFormat(AGPDateTimeChangeListenerIfc::DATE_FORMAT_UNKNOWN),
      mTimeFormat(AGPDateTimeChangeListenerIfc::TIME_FORMAT_UNKNOWN), mMultiTabState(0), mFocusCounter(0),
      mNoControlKey(true), mFirstTabPulled(false), mTabSwitchOnPush(false), mShown(false),
      mTabPlaceholders(kMaxTabs, nullptr) {}

AGPGUIHandler::~AGPGUIHandler() {
    if (mTabScreen != nullptr) {
        while (mTabScreen->numberOfTabs() > 0) {
            mTabScreen->removeTabAtIndex(0);
        }
        if (mDisplay != nullptr && mDisplay->getCurrent() == mTabScreen) {
            mDisplay->setCurrent(nullptr);
        }
        delete mTabScreen;
    }
    cleanupCacheAndHistory(0);
    for (DisplayAPI::Displayable* placeholder : mTabPlaceholders) {
        delete placeholder;
    }
    delete mCommandListener;
    delete mMenuCommandListener;
    delete mItemStateListener;
    delete mGUILock;
}

bool AGPGUIHandler::startAGPGUIHandler(DisplayAPI::Display* display, PhoneletManagerIfc* phoneletManager) {
    if (display == nullptr) {
        AGP_LOG(2, "AGPGUIHandler startup failed: can't find Display");
        return false;
    }
    if (AGPPhoneletManager::findAGPMessageQueueHandler() == nullptr) {
        AGP_LOG(2, "AGPGUIHandler startup failed: can't find AGPMessageQueueHandler");
        return false;
    }
    mPhoneletManager = phoneletManager;
    mCommandListener = new AGPCommandListener();
    mMenuCommandListener = new AGPMenuCommandListener();
    mItemStateListener = new AGPItemStateListener();
    mDisplay = display;
    AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
    mNoControlKey = configuration == nullptr || configuration->getAppControlKey().empty();
    return true;
}

void AGPGUIHandler::stopPhonelet() {
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (mPhoneletManager != nullptr && phonelet != nullptr) {
        mPhoneletManager->stopPhonelet(phonelet->getPhoneletName());
    }
}

// ---- Showing, hiding and focus ----

// The host's thread may not touch elements: each queue thread deletes its own at any time. What
// the life-cycle calls need to know of an element is asked on the element's queue thread.

void AGPGUIHandler::show() {
    mShown = true;
    notifyEventOnQueue(getMessageQueueIdForCurrent(), AGPIppCommand::ONFOCUS);
    if (mDisplay == nullptr) {
        return;
    }
    AGPQueueNumber queue = 0;
    const AGPId current = (mMultiTabState == 2 || mMultiTabState == 3) ? currentOwner(&queue) : 0;
    if (current == 0) {
        showNow(false);
        return;
    }
    // With the tab bar in use, an open context menu keeps the display hidden.
    useOnQueue(current, queue, [this](AGPCommonBase* object) {
        AGPDisplayable* element = asDisplayable(object);
        showNow(element != nullptr && element->isContextMenuDisplayed());
    });
}

void AGPGUIHandler::showNow(bool contextMenuOpen) {
    std::lock_guard<std::recursive_mutex> showing(mShowLock);
    if (!mShown) {
        return; // hidden again meanwhile
    }
    mDisplay->show();
    if (contextMenuOpen) {
        mVisible = false;
        mDisplay->hide();
        return;
    }
    mVisible = true;
    notifyFocusListeners(FocusShown);
}

void AGPGUIHandler::hide() {
    std::lock_guard<std::recursive_mutex> showing(mShowLock);
    mShown = false;
    notifyEventOnQueue(getMessageQueueIdForCurrent(), AGPIppCommand::ONBLUR);
    if (mDisplay != nullptr) {
        mDisplay->hide();
    }
    mVisible = false;
    notifyFocusListeners(FocusHidden);
}

AGPId AGPGUIHandler::currentOwner(AGPQueueNumber* queue) {
    *queue = 0;
    AGPId id = 0;
    if (mTabScreen != nullptr && tabCount() >= 2) {
        id = mTabScreen->getOwnerIdForTabAtIndex(mTabScreen->getCurrentTabIndex());
    } else if (mDisplay != nullptr) {
        id = mDisplay->getCurrentOwnerId();
    }
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    return id != 0 && map != nullptr && map->getQueueOf(id, *queue) ? id : 0;
}

void AGPGUIHandler::useOnQueue(AGPId id, AGPQueueNumber queue, std::function<void(AGPCommonBase*)> use) {
    runOnQueue(queue, [id, queue, use = std::move(use)] {
        AGPCommonBase* element = lookUp(id);
        use(element != nullptr && element->getQueueID() == queue ? element : nullptr);
    });
}

bool AGPGUIHandler::showsOwnWidget(AGPDisplayable* element) {
    DisplayAPI::Displayable* own = element->getDisplayAPIDisplayable();
    if (own == nullptr) {
        return false;
    }
    // Pointers compared, never followed: the widgets shown may belong to other threads.
    if (mTabScreen != nullptr && tabCount() >= 2) {
        return mTabScreen->getDisplayableForTabAtIndex(queueIdToTabIdx(element->getQueueID())) == own;
    }
    return mDisplay != nullptr && mDisplay->getCurrent() == own;
}

void AGPGUIHandler::notifyEvent(AGPQueueNumber queue, AGPIppCommand::AGPEvent event) {
    AGPDisplayable* target = nullptr;
    if (validQueue(queue)) {
        if (mQueueState[queue].popupPlayer != 0) {
            target =
                asDisplayableOfType(lookUp(mQueueState[queue].popupPlayer), AGPObjectTypeInfo::ti_IppPlayer);
        } else if (mQueueState[queue].alert != 0 && mQueueState[queue].alert != kAllBitsSet) {
            target = asDisplayableOfType(lookUp(mQueueState[queue].alert), AGPObjectTypeInfo::ti_IppAlert);
        } else {
            AGPIppScreen* screen = getCurrentScreen(queue);
            target = screen != nullptr ? screen->getDisplayableElement() : nullptr;
        }
    }
    if (target == nullptr) {
        AGP_LOG(5, "notifyEvent: called for event [%d], queueId [%d], current AGPDisplayable not found",
                event, queue);
        return;
    }
    AGP_LOG(5, "notifyEvent: event [%d] sent to AGPDisplayable [%s] [ptr %p] [AGPId %lu], queueId [%d]\n",
            event, typeName(target), static_cast<void*>(target),
            static_cast<unsigned long>(target->getAGPObjectID()), queue);
    target->processNotifyEvent(event);
}

void AGPGUIHandler::notifyEventOnQueue(AGPQueueNumber queue, AGPIppCommand::AGPEvent event) {
    runOnQueue(queue, [this, queue, event] { notifyEvent(queue, event); });
}

void AGPGUIHandler::runOnQueue(AGPQueueNumber queue, std::function<void()> work) {
    AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler();
    if (queues == nullptr || !validQueue(queue)) {
        return;
    }
    // The queue handler, and with it every queue thread, ends before this handler does.
    AGPMessage message;
    message.priority = AGPMessage::High;
    message.task = std::move(work);
    queues->addToMessageQueue(message, queue);
}

void AGPGUIHandler::setSelectionHighlight(bool on) {
    AGP_LOG(5, "setSelectionHighlight: showHighLight = %d, tabs displayed = %d", on,
            static_cast<int>(tabCount()));
    std::vector<AGPId> shown;
    if (tabCount() < 2 || mTabScreen == nullptr) {
        if (mDisplay != nullptr) {
            shown.push_back(mDisplay->getCurrentOwnerId());
        }
    } else {
        for (const auto& entry : tabMapCopy()) {
            shown.push_back(mTabScreen->getOwnerIdForTabAtIndex(entry.second));
        }
    }
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    for (AGPId id : shown) {
        AGPQueueNumber queue = 0;
        if (id != 0 && map != nullptr && map->getQueueOf(id, queue)) {
            useOnQueue(id, queue, [this, on](AGPCommonBase* element) {
                setSelectionHighlightOf(asFullScreen(element), on);
            });
        }
    }
}

void AGPGUIHandler::setSelectionHighlightOf(AGPDisplayable* element, bool on) {
    if (element == nullptr || !showsOwnWidget(element)) {
        return;
    }
    const bool softKeys = mDisplay != nullptr && mDisplay->hasSoftKeyBar() != 0;
    if (element->isContextMenuDisplayed() && !softKeys) {
        return;
    }
    element->setHighlight(on);
}

bool AGPGUIHandler::agpDisplayableIsCurrentAndUnobscured(AGPDisplayable* element) {
    if (element == nullptr || element->isPopupMenuDisplayed()) {
        return false;
    }
    if (mDisplay != nullptr && mDisplay->hasSoftKeyBar() != 0) {
        return true;
    }
    return showsOwnWidget(element) && !element->isContextMenuDisplayed();
}

// ---- Tabs ----

void AGPGUIHandler::tabStatusChange(bool active) {
    AGP_LOG(5, "tabStatusChange() called, active=%i, visible=%i, MultiTabState=%d", active, mVisible.load(),
            mMultiTabState.load());
    if (active) {
        if (mMultiTabState == 0 || mMultiTabState == 1) {
            mMultiTabState = 3;
            setSelectionHighlight(false);
        } else if (mMultiTabState == 2) {
            mMultiTabState = 3;
            if (mTabScreen != nullptr) {
                mTabScreen->leaveTabBarUpwards();
            }
        }
        return;
    }
    if (mDisplay == nullptr) {
        return;
    }
    if (!mVisible) {
        if (mShown) {
            mDisplay->show();
            mVisible = true;
        }
        return;
    }
    AGPQueueNumber queue = 0;
    const AGPId current = currentOwner(&queue);
    if (current == 0) {
        focusLeftTabBar(nullptr, getMessageQueueIdForCurrent());
        return;
    }
    // Where the focus goes depends on the element's menus: decided on its queue thread.
    useOnQueue(current, queue, [this, queue](AGPCommonBase* element) { focusLeftTabBar(element, queue); });
}

void AGPGUIHandler::focusLeftTabBar(AGPCommonBase* object, AGPQueueNumber queue) {
    const bool manyTabs = mTabScreen != nullptr && tabCount() >= 2;
    const bool softKeys = mDisplay->hasSoftKeyBar() != 0;
    AGPDisplayable* element = asFullScreen(object);
    bool stopped = false;
    if (manyTabs && mMultiTabState == 0) {
        mMultiTabState = 1;
        mDisplay->show();
    } else if (manyTabs && validQueue(queue) && (mMultiTabState == 2 || mMultiTabState == 3)) {
        const bool enterBar = mQueueState[queue].popupPlayer == 0 && mQueueState[queue].alert == 0;
        if (!enterBar) {
            mMultiTabState = 1;
        }
        if (object == nullptr) {
            AGP_LOG(5, "tabStatusChange() Current object not found in multitab app");
            mDisplay->show();
        } else if (element != nullptr && showsOwnWidget(element) &&
                   (element->isPopupMenuDisplayed() || (!softKeys && element->isContextMenuDisplayed()))) {
            mMultiTabState = 1;
            setSelectionHighlight(true);
            mDisplay->show();
        } else {
            if (enterBar) {
                mMultiTabState = 2;
                mTabScreen->enterTabBar();
                stopped = softKeys;
            }
            if (!stopped) {
                mDisplay->show();
            }
        }
    } else if (object != nullptr) {
        mMultiTabState = 1;
        if (element != nullptr && agpDisplayableIsCurrentAndUnobscured(element)) {
            element->restoreFocusAndHighlight();
        }
        mDisplay->show();
    } else {
        mDisplay->show();
    }
    if (!stopped && mShown) {
        mDisplay->show();
        mVisible = true;
    }
}

void AGPGUIHandler::phoneletTabStatusChange(AGPMessage& message, AGPQueueNumber queue) {
    AGP_LOG(5, "phoneletTabStatusChange called (message=%s, queueId=%d)",
            message.getMessageTypeString().c_str(), queue);
    const int tabs = static_cast<int>(tabCount());
    if (message.type == AGPMessage::Command_Tabbar_Inactive) {
        if (queue == 0) {
            return;
        }
        if (mTabScreen == nullptr || mDisplay == nullptr || mDisplay->hasSoftKeyBar() == 0) {
            mMultiTabState = 1;
            return;
        }
        AGPCommonBase* element = lookUp(message.agpId);
        if (element != nullptr && element->getAGPObjectType() == AGPObjectTypeInfo::ti_IppTable) {
            AGPMessage right(AGPMessage::Command_Right, "Command right for show soft key labels");
            right.agpId = element->getAGPObjectID();
            if (tabs >= 2) {
                // The current tab may be another queue's: its widget is only named, never used.
                const int index = mTabScreen->getCurrentTabIndex();
                AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
                const AGPId shown = mTabScreen->getOwnerIdForTabAtIndex(index);
                if (shown == 0 || map == nullptr || map->getTypeOf(shown) == AGPObjectTypeInfo::ti_NoType) {
                    return;
                }
                right.displayable = mTabScreen->getDisplayableForTabAtIndex(index);
            }
            AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler();
            if (queues != nullptr) {
                queues->addToMessageQueue(right, queue);
            }
        }
        mMultiTabState = 1;
        return;
    }
    if (message.type != AGPMessage::Command_Tabbar_Active) {
        return;
    }
    if (queue != 0) {
        if (!mNoControlKey && tabs == 1) {
            return;
        }
        if (message.displayable != mTabScreen && tabs != 1) {
            if (mTabScreen != nullptr) {
                mMultiTabState = 2;
                setSelectionHighlight(false);
            }
            return;
        }
    } else if (!mNoControlKey) {
        return;
    }
    mMultiTabState = 3;
    if (mPhoneletManager != nullptr) {
        mPhoneletManager->setTabBarFocus(true);
    }
}

void AGPGUIHandler::tab(int direction) {
    if (mTabScreen == nullptr || tabCount() < 2 || mDisplay == nullptr) {
        return;
    }
    switchTabOnQueue(getMessageQueueIdForCurrent(), direction, 0);
}

void AGPGUIHandler::switchTabOnQueue(AGPQueueNumber queue, int direction, int hops) {
    if (validQueue(queue) && hops < QUEUE_COUNT) {
        runOnQueue(queue, [this, queue, direction, hops] { switchTab(queue, direction, hops); });
    }
}

void AGPGUIHandler::switchTab(AGPQueueNumber queue, int direction, int hops) {
    if (mTabScreen == nullptr || tabCount() < 2) {
        return;
    }
    const AGPQueueNumber current = getMessageQueueIdForCurrent();
    if (current != queue) {
        // Another tab came to the front meanwhile: its queue thread decides.
        switchTabOnQueue(current, direction, hops + 1);
        return;
    }
    if (mQueueState[queue].popupPlayer != 0 || mQueueState[queue].alert != 0) {
        AGP_LOG(5, "AGPGUIHandler::tab() Alert or Player displayed, disable tabbing");
        return;
    }
    AGPCommonBase* object = lookUp(mTabScreen->getOwnerIdForTabAtIndex(queueIdToTabIdx(queue)));
    if (object == nullptr || object->getQueueID() != queue) {
        AGP_LOG(5, "AGPGUIHandler::tab() current object not found");
        return;
    }
    AGPDisplayable* element = asFullScreen(object);
    if (element != nullptr && showsOwnWidget(element) && mDisplay->hasSoftKeyBar() == 0 &&
        (element->isContextMenuDisplayed() || element->isPopupMenuDisplayed())) {
        AGP_LOG(5, "AGPGUIHandler::tab() tabbing not allowed, popup or context menu displayed");
        return;
    }
    if (AGPIppScreen* screen = getCurrentScreen(queue)) {
        screen->lostFocus();
    }
    notifyEvent(queue, AGPIppCommand::ONBLUR);
    mDisplay->setCurrent(mTabScreen);
    if (direction == 1) {
        mTabScreen->nextTab();
    } else if (direction == -1) {
        mTabScreen->previousTab();
    }
    const AGPQueueNumber next = getMessageQueueIdForCurrent();
    runOnQueue(next, [this, next] { focusTabQueue(next); });
}

void AGPGUIHandler::focusTabQueue(AGPQueueNumber next) {
    {
        AGPDisplayable* alert =
            asDisplayableOfType(lookUp(mQueueState[next].alert), AGPObjectTypeInfo::ti_IppAlert);
        AGPDisplayable* player =
            asDisplayableOfType(lookUp(mQueueState[next].popupPlayer), AGPObjectTypeInfo::ti_IppPlayer);
        if (alert != nullptr) {
            showDisplayableAlert(dynamic_cast<DisplayAPI::Alert*>(widgetOf(alert)), next,
                                 mQueueState[next].alert, AGPMessage::Unknown, true);
        } else if (player != nullptr) {
            showDisplayablePopupPlayer(dynamic_cast<DisplayAPI::PopupPlayer*>(widgetOf(player)), next,
                                       mQueueState[next].popupPlayer, AGPMessage::Unknown, true);
        } else if (AGPIppScreen* nextScreen = getCurrentScreen(next)) {
            nextScreen->gainedFocus();
        }
    }
    notifyEvent(next, AGPIppCommand::ONFOCUS);
}

bool AGPGUIHandler::initTabScreen(AGPTab tab, Translator* translator) {
    AGP_LOG(5, "AGPGUIHandler::initTabScreen: tab = %d", tab);
    if (tab < 0 || tab >= kMaxTabs) {
        return false;
    }
    CriticalSection lock(mGUILock);
    if (mTabScreen == nullptr) {
        AGPDataObserver* configuration = AGPPhoneletManager::getAGPDataObserver();
        mTabScreen = new DisplayAPI::TabScreen(tabScreenNumberFor(configuration->getAppControlKey()), 1);
        if (mNoControlKey) {
            mTabScreen->setUsedWithTab(true);
        }
        mTabScreen->addCommandListener(mCommandListener);
    }
    if (mTabScreen->numberOfTabs() == 0 && tabCount() == 1) {
        AGPTab registered = 0;
        {
            std::lock_guard<std::mutex> state(mStateLock);
            registered = mTabMap.begin()->first;
            mTabMap.clear();
        }
        initTab(registered, translator);
    }
    const bool initialised = initTab(tab, translator);
    if (initialised && tabCount() == 2 && mDisplay != nullptr) {
        // The first tab keeps showing its screen: its widget moves into the tab screen now, not
        // when the new tab's document arrives (which may be never), and the tab screen is shown
        // with it.
        pullFirstTabDisplayableIntoTabScreen(tab + 1, true, true);
    }
    return initialised;
}

bool AGPGUIHandler::initTab(AGPTab tab, Translator* translator) {
    if (tab < 0 || tab >= kMaxTabs || mTabScreen == nullptr || hasTab(tab)) {
        return false;
    }
    DisplayAPI::Displayable* placeholder = mTabPlaceholders[static_cast<size_t>(tab)];
    if (placeholder == nullptr) {
        auto* starting = new DisplayAPI::List(1);
        starting->append(TranslationInfo("xml.app.starting", translator));
        placeholder = starting;
        mTabPlaceholders[static_cast<size_t>(tab)] = placeholder;
    }
    mTabScreen->addTab(tabLabel(AGPPhoneletManager::getAGPDataObserver(), tab), placeholder, nullptr);
    if (mTabScreen->numberOfTabs() == 1) {
        mTabScreen->setCurrentTabIndex(0);
    }
    std::lock_guard<std::mutex> state(mStateLock);
    const int index = static_cast<int>(mTabMap.size());
    mTabMap[tab] = index;
    return true;
}

bool AGPGUIHandler::isTabInitialized(AGPTab tab) const {
    return hasTab(tab);
}

size_t AGPGUIHandler::tabCount() const {
    std::lock_guard<std::mutex> state(mStateLock);
    return mTabMap.size();
}

bool AGPGUIHandler::hasTab(AGPTab tab) const {
    std::lock_guard<std::mutex> state(mStateLock);
    return mTabMap.count(tab) != 0;
}

std::map<AGPGUIHandler::AGPTab, int> AGPGUIHandler::tabMapCopy() const {
    std::lock_guard<std::mutex> state(mStateLock);
    return mTabMap;
}

AGPQueueNumber AGPGUIHandler::tabIdxToQueueId(int tabIndex) const {
    std::lock_guard<std::mutex> state(mStateLock);
    for (const auto& entry : mTabMap) {
        if (entry.second == tabIndex) {
            return entry.first + 1;
        }
    }
    return 0;
}

int AGPGUIHandler::queueIdToTabIdx(AGPQueueNumber queue) const {
    std::lock_guard<std::mutex> state(mStateLock);
    auto found = mTabMap.find(queue - 1);
    return found == mTabMap.end() ? 0 : found->second;
}

AGPQueueNumber AGPGUIHandler::getMessageQueueIdForCurrent() {
    if (mTabScreen == nullptr) {
        return 0;
    }
    const auto tabs = tabMapCopy();
    if (tabs.size() >= 2) {
        return tabIdxToQueueId(mTabScreen->getCurrentTabIndex());
    }
    return tabs.size() == 1 ? tabs.begin()->first + 1 : 0;
}

AGPIppScreen* AGPGUIHandler::getCurrentScreen(AGPQueueNumber queue) {
    return validQueue(queue) ? asScreen(lookUp(mQueueState[queue].currentScreen)) : nullptr;
}

AGPDisplayable* AGPGUIHandler::getCurrentDisplayable() {
    // Also right while the one remaining tab is shown without the tab screen.
    AGPIppScreen* screen = getCurrentScreen(getMessageQueueIdForCurrent());
    return screen != nullptr ? screen->getDisplayableElement() : nullptr;
}

AGPId AGPGUIHandler::getCurrentDisplayableId() {
    const AGPQueueNumber queue = getMessageQueueIdForCurrent();
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    AGPId id = 0;
    if (validQueue(queue) && map != nullptr) {
        // Resolved under the registry lock: the screen may belong to another thread's queue.
        map->withObject(mQueueState[queue].currentScreen, [&id](AGPCommonBase* element) {
            AGPIppScreen* screen = asScreen(element);
            AGPDisplayable* shown = screen != nullptr ? screen->getDisplayableElement() : nullptr;
            id = shown != nullptr ? shown->getAGPObjectID() : 0;
        });
    }
    return id;
}

void AGPGUIHandler::setCurrentDisplayableForTabAtIndexInternal(AGPQueueNumber queue,
                                                               DisplayAPI::Displayable* widget,
                                                               AGPMessage::MessageType type,
                                                               bool bringToFront) {
    if (mTabScreen == nullptr || !validQueue(queue)) {
        return;
    }
    const int index = queueIdToTabIdx(queue);
    mTabScreen->setCurrentDisplayableForTabAtIndex(index, widget);
    mQueueState[queue].popupPlayer = 0;
    mQueueState[queue].alert = 0;
    if (type == AGPMessage::UrlRequest_XML_push_force && bringToFront) {
        mTabScreen->setCurrentTabIndex(index);
    }
    const AGPTab tab = queue - 1;
    if (tab >= 0 && tab < kMaxTabs && mTabPlaceholders[static_cast<size_t>(tab)] != nullptr &&
        mTabPlaceholders[static_cast<size_t>(tab)] != widget) {
        delete mTabPlaceholders[static_cast<size_t>(tab)];
        mTabPlaceholders[static_cast<size_t>(tab)] = nullptr;
    }
}

void AGPGUIHandler::pullFirstTabDisplayableIntoTabScreen(AGPQueueNumber queue, bool bringToFront,
                                                         bool showTabScreen) {
    const auto showTabs = [this, showTabScreen] {
        if (showTabScreen && mDisplay != nullptr && mTabScreen != nullptr) {
            mDisplay->setCurrent(mTabScreen);
        }
    };
    if (tabCount() == 0 || mFirstTabPulled || mTabScreen == nullptr) {
        showTabs();
        return;
    }
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    const AGPId firstId = mFirstTabDisplayable;
    AGPQueueNumber firstQueue = 0;
    if (firstId != 0 && map != nullptr && map->getQueueOf(firstId, firstQueue) && firstQueue != queue &&
        validQueue(firstQueue)) {
        // The first tab's screen belongs to its own queue thread, which moves it.
        runOnQueue(firstQueue, [this, firstQueue, bringToFront, showTabs] {
            DeferredFocus focus(*this);
            CriticalSection lock(mGUILock);
            showTabs();
            pullFirstTabOfQueue(firstQueue, true, bringToFront);
        });
        return;
    }
    showTabs();
    pullFirstTabOfQueue(queue, false, bringToFront);
}

void AGPGUIHandler::pullFirstTabOfQueue(AGPQueueNumber queue, bool showItsAlert, bool bringToFront) {
    if (tabCount() == 0 || mFirstTabPulled || mTabScreen == nullptr) {
        return;
    }
    mFirstTabPulled = true;
    AGPDisplayable* first = asDisplayable(ownElementOf(mFirstTabDisplayable, queue));
    DisplayAPI::Displayable* widget = widgetOf(first);
    if (widget != nullptr) {
        const AGPQueueNumber firstQueue = first->getQueueID();
        const int index = queueIdToTabIdx(firstQueue);
        if (!validQueue(firstQueue) || index >= mTabScreen->numberOfTabs() - 1 ||
            mTabScreen->getDisplayableForTabAtIndex(index) == widget) {
            return;
        }
        const AGPId pendingAlert = mQueueState[firstQueue].alert;
        setCurrentDisplayableForTabAtIndexInternal(firstQueue, widget, AGPMessage::UrlRequest_XML_push_force,
                                                   bringToFront);
        if (isFullScreenType(first->getAGPObjectType())) {
            widget->setUsedWithTab(true, mTabScreen);
        }
        mQueueState[firstQueue].alert = pendingAlert;
        if (showItsAlert) {
            showAlertForQueueIfSet(firstQueue, bringToFront, mGUILock, queue);
        }
        return;
    }
    if (tabCount() != 2) {
        AGP_LOG(2, "NULL first tab display in pullFirstTabDisplayableIntoTabScreen");
        return;
    }
    AGPQueueNumber other = 0;
    for (const auto& entry : tabMapCopy()) {
        if (entry.first + 1 != queue) {
            other = entry.first + 1;
        }
    }
    if (other != 0) {
        showAlertForQueueIfSet(other, bringToFront, mGUILock, queue);
    }
}

DisplayAPI::Displayable* AGPGUIHandler::removeFirstTabOutOfTabScreen() {
    if (mTabScreen == nullptr || tabCount() != 1) {
        return nullptr;
    }
    // The remaining tab may be another queue's: its element is asked by identifier only.
    const int index = mTabScreen->getCurrentTabIndex();
    const AGPId owner = mTabScreen->getOwnerIdForTabAtIndex(index);
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    DisplayAPI::Displayable* widget = mTabScreen->getDisplayableForTabAtIndex(index);
    if (owner != 0 && map != nullptr && isFullScreenType(map->getTypeOf(owner)) && widget != nullptr) {
        widget->setUsedWithTab(mNoControlKey, nullptr);
        mTabScreen->removeTab(widget);
        mFirstTabPulled = false;
        // What the one remaining tab shows directly must be pulled back in when a tab comes again.
        mFirstTabDisplayable = owner;
        return widget;
    }
    AGPDisplayable* current = getCurrentDisplayable();
    if (current == nullptr) {
        return nullptr;
    }
    if (current->getAGPObjectType() == AGPObjectTypeInfo::ti_IppAlert) {
        DisplayAPI::Displayable* previous = findPreviousFullDisplayable(current->getQueueID());
        if (previous != nullptr) {
            return previous;
        }
    }
    return current->getDisplayAPIDisplayable();
}

AGPCommonBase* AGPGUIHandler::ownElementOf(AGPId owner, AGPQueueNumber queue) {
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    AGPQueueNumber ownerQueue = 0;
    return owner != 0 && map != nullptr && map->getQueueOf(owner, ownerQueue) && ownerQueue == queue
               ? lookUp(owner)
               : nullptr;
}

AGPObjectTypeInfo::AGPObjectType AGPGUIHandler::typeOfShown(AGPQueueNumber* queue) {
    *queue = 0;
    AGPObjectMap* map = AGPPhoneletManager::findAGPObjectMap();
    const AGPId owner = mDisplay != nullptr ? mDisplay->getCurrentOwnerId() : 0;
    if (owner == 0 || map == nullptr || !map->getQueueOf(owner, *queue)) {
        return AGPObjectTypeInfo::ti_NoType;
    }
    return map->getTypeOf(owner);
}

bool AGPGUIHandler::isCurrentTabQueue(AGPQueueNumber queue) {
    return mTabScreen != nullptr && tabIdxToQueueId(mTabScreen->getCurrentTabIndex()) == queue;
}

void AGPGUIHandler::selectTabOfQueue(AGPQueueNumber queue) {
    if (mTabScreen != nullptr) {
        mTabScreen->setCurrentTabIndex(queueIdToTabIdx(queue));
    }
}

// ---- Installing documents ----

bool AGPGUIHandler::processXmlTreeObject(AGPCommonBase*& root, AGPQueueNumber queue,
                                         AGPMessage::MessageType type, const std::string& url,
                                         long cacheValidity, bool bringToFront) {
    if (type == AGPMessage::UrlRequest_Display_Error && queue != 0 && !isTabInitialized(queue - 1)) {
        AGP_LOG(5, "processXmlTreeObject: tab for queue %d is not initialised", queue);
        if (root != nullptr) {
            destroyTree(root->getAGPObjectID());
            root = nullptr;
        }
        return true;
    }
    if (root == nullptr) {
        AGP_LOG(5, "Received NULL pointer for xmlTreeObject");
        reportDisplayError("Invalid root element detected in the received XML document");
        return false;
    }
    if (!setIppDisplayAsRoot(root)) {
        AGP_LOG(5, "Invalid root element detected");
        reportDisplayError("Mandatory element missing in the received XML document");
        return false;
    }
    auto* display = dynamic_cast<AGPIppDisplay*>(root);
    if (display == nullptr || !validQueue(queue)) {
        AGP_LOG(5, "Invalid root element detected");
        reportDisplayError("Mandatory element missing in the received XML document");
        return false;
    }
    if (mFirstDocumentPending) {
        AGPCommonBase* first = display->getChildByType(AGPObjectTypeInfo::ti_IppScreen);
        bool showable = false;
        if (first != nullptr) {
            for (AGPCommonBase* child : first->getSequence()) {
                const Type childType = child->getAGPObjectType();
                showable = showable || isFullScreenType(childType) || isPopupType(childType);
            }
        }
        if (!showable) {
            AGP_LOG(5, "Nothing to display in first XML document");
            reportDisplayError("Mandatory element missing in the first received XML document");
            return false;
        }
        mFirstDocumentPending = false;
    }

    std::vector<AGPCommonBase*> elements;
    collectTree(root, elements);
    for (AGPCommonBase* element : elements) {
        element->setQueueID(queue);
        element->initializeElement();
    }
    for (AGPCommonBase* element : elements) {
        element->processElement();
    }

    std::vector<AGPCommonBase*> children;
    display->getChildrenByType(AGPObjectTypeInfo::ti_IppScreen, children);
    std::vector<AGPIppScreen*> screens;
    for (AGPCommonBase* child : children) {
        if (AGPIppScreen* screen = asScreen(child)) {
            screen->setOriginatingUri(url);
            screen->setCacheExpirationTime(cacheValidity);
            screens.push_back(screen);
        }
    }
    AGPIppScreen* initial = nullptr;
    AGPIppScreen* update = nullptr;
    for (AGPIppScreen* screen : screens) {
        const long id = static_cast<long>(screen->getAGPID());
        if (initial == nullptr && display->getAGPInitialScreen() != -1 &&
            id == display->getAGPInitialScreen()) {
            initial = screen;
        }
        if (update == nullptr && display->getAGPUpdateScreen() != -1 && id == display->getAGPUpdateScreen()) {
            update = screen;
        }
    }
    if (initial == nullptr && !screens.empty()) {
        initial = screens.front();
    }
    if (update == initial) {
        update = nullptr;
    }

    std::vector<AGPId> cached;
    for (auto screen = screens.rbegin(); screen != screens.rend(); ++screen) {
        if ((*screen)->getDisplayableElement() != nullptr) {
            cached.push_back((*screen)->getAGPObjectID());
            mQueueState[queue].cache.push_back((*screen)->getAGPObjectID());
            display->removeChild(*screen);
        }
    }
    const auto isCached = [&cached](AGPIppScreen* screen) {
        return screen != nullptr &&
               std::find(cached.begin(), cached.end(), screen->getAGPObjectID()) != cached.end();
    };
    const AGPId initialId = isCached(initial) ? initial->getAGPObjectID() : 0;
    const AGPId updateId = isCached(update) ? update->getAGPObjectID() : 0;

    if (update != nullptr) {
        commandShowScreen(update, queue, true, type, bringToFront);
    }
    if (initial != nullptr) {
        if (mTabScreen != nullptr && mDisplay != nullptr) {
            AGPQueueNumber shownQueue = 0;
            if (typeOfShown(&shownQueue) == AGPObjectTypeInfo::ti_IppAlert && shownQueue == queue &&
                !isCurrentTabQueue(queue)) {
                mDisplay->setCurrent(mTabScreen);
            }
        }
        commandShowScreen(initial, queue, type == AGPMessage::UrlRequest_XML_cache_expired_back, type,
                          bringToFront);
    }
    // Looked up again: a check may destroy an older copy that is also one of these screens.
    for (AGPId id : cached) {
        AGPIppScreen* screen = asScreen(lookUp(id));
        if (screen != nullptr && std::find(mQueueState[queue].cache.begin(), mQueueState[queue].cache.end(),
                                           id) != mQueueState[queue].cache.end()) {
            checkScreenID(screen, queue);
        }
    }
    destroyTree(display->getAGPObjectID());
    // This queue's own cache only: another tab's screens belong to that tab's thread.
    trimCacheAndHistory(queue, CACHE_MAXSIZE);
    const AGPId shownId = initialId != 0 ? initialId : updateId;
    root = lookUp(shownId);
    return true;
}

bool AGPGUIHandler::setIppDisplayAsRoot(AGPCommonBase*& root) {
    if (root == nullptr) {
        return false;
    }
    if (root->getAGPObjectType() == AGPObjectTypeInfo::ti_IppDisplay) {
        AGP_LOG(5, "setIppDisplayAsRoot: Nothing to do...");
        return true;
    }
    if (root->getAGPObjectType() != AGPObjectTypeInfo::ti_IppPhone) {
        return false;
    }
    AGPCommonBase* display = root->getChildByType(AGPObjectTypeInfo::ti_IppDisplay);
    if (display == nullptr) {
        return false;
    }
    root->removeChild(display);
    destroyTree(root->getAGPObjectID());
    root = display;
    AGP_LOG(5, "setIppDisplayAsRoot: New root set");
    return true;
}

// ---- Showing screens ----

void AGPGUIHandler::indicatePushTo(AGPQueueNumber visibleQueue, AGPQueueNumber queue, bool blur) {
    const auto indicate = [this, visibleQueue, blur] {
        AGPIppScreen* screen = getCurrentScreen(visibleQueue);
        AGPDisplayable* current = screen != nullptr ? screen->getDisplayableElement() : nullptr;
        if (current == nullptr) {
            return;
        }
        if (blur) {
            notifyEvent(visibleQueue, AGPIppCommand::ONBLUR);
        }
        current->pushRequestIndication();
    };
    // The element on show may be another tab's: it is told on that tab's queue thread.
    if (visibleQueue == queue) {
        indicate();
    } else {
        runOnQueue(visibleQueue, indicate);
    }
}

void AGPGUIHandler::commandShowScreen(AGPIppScreen* screen, AGPQueueNumber queue, bool isBack,
                                      AGPMessage::MessageType type, bool bringToFront) {
    AGP_LOG(5, "commandShowScreen(toBeShown=%d, queueID=%d, isBack=%d) entered",
            screen != nullptr ? static_cast<int>(screen->getAGPObjectID()) : 0, queue, isBack);
    if (screen == nullptr || !validQueue(queue)) {
        return;
    }
    std::vector<AGPId>& cache = mQueueState[queue].cache;
    const AGPId screenId = screen->getAGPObjectID();
    auto entry = std::find(cache.begin(), cache.end(), screenId);
    if (entry == cache.end()) {
        screen->invokeActions();
        return;
    }
    if (!isBack) {
        cache.erase(entry);
        cache.push_back(screenId);
    }
    AGPDisplayable* shown = screen->getDisplayableElement();
    const AGPQueueNumber visibleQueue = getMessageQueueIdForCurrent();

    bool focusLater = false;
    switch (type) {
    case AGPMessage::UrlRequest_XML_push_active:
    case AGPMessage::UrlRequest_XML_push_queue:
    case AGPMessage::UrlRequest_XML_push_indicate:
        indicatePushTo(visibleQueue, queue, false);
        break;
    case AGPMessage::UrlRequest_XML_push_force:
        if (queue != visibleQueue) {
            focusLater = getCurrentScreen(queue) != nullptr;
        }
        indicatePushTo(visibleQueue, queue, queue != visibleQueue);
        break;
    default:
        break;
    }

    AGPCommonBase* present = nullptr;
    if (queue == 0 || tabCount() == 1) {
        present = mDisplay != nullptr ? ownElementOf(mDisplay->getCurrentOwnerId(), queue) : nullptr;
    } else {
        present = lookUp(mQueueState[queue].popupPlayer);
        if (present == nullptr) {
            present = lookUp(mQueueState[queue].alert);
        }
        if (present == nullptr && mTabScreen != nullptr) {
            present = ownElementOf(mTabScreen->getOwnerIdForTabAtIndex(queueIdToTabIdx(queue)), queue);
        }
    }
    AGPIppScreen* previous = nullptr;
    bool presentIsPopup = false;
    if (present != nullptr) {
        previous = getCurrentScreen(queue);
        const Type presentType = present->getAGPObjectType();
        if (isFullScreenType(presentType) || isPopupType(presentType)) {
            AGP_LOG(5, "commandShowScreen has displayable %s", typeName(present));
            presentIsPopup = isPopupType(presentType);
            if (AGPDisplayable* displayable = asDisplayable(present)) {
                displayable->stopTimer();
            }
        }
    }

    if (!screen->hasBack()) {
        mQueueState[queue].history.clear();
    } else if (!isBack && present != nullptr) {
        AGPIppScreen* before = getCurrentScreen(queue);
        AGPDisplayable* beforeElement = before != nullptr ? before->getDisplayableElement() : nullptr;
        if (before != nullptr && before->getAGPHistory() != AGPIppScreen::HISTORY_NO &&
            beforeElement != nullptr && !isPopupType(beforeElement->getAGPObjectType())) {
            mQueueState[queue].history.push_back(before->getAGPObjectID());
        }
    }

    screen->invokeActions();
    if (queue == 0 || tabCount() == 1 || isCurrentTabQueue(queue) ||
        type == AGPMessage::UrlRequest_XML_push_force) {
        screen->gainedFocus();
    }
    if (type == AGPMessage::UrlRequest_XML_push_force && focusLater) {
        notifyEvent(queue, AGPIppCommand::ONFOCUS);
    }

    if (shown != nullptr) {
        DisplayAPI::Displayable* widget = shown->getDisplayAPIDisplayable();
        switch (shown->getAGPObjectType()) {
        case AGPObjectTypeInfo::ti_IppAlert:
            showDisplayableAlert(dynamic_cast<DisplayAPI::Alert*>(widget), queue, shown->getAGPObjectID(),
                                 type, bringToFront);
            break;
        case AGPObjectTypeInfo::ti_IppPlayer:
            showDisplayablePopupPlayer(dynamic_cast<DisplayAPI::PopupPlayer*>(widget), queue,
                                       shown->getAGPObjectID(), type, bringToFront);
            break;
        case AGPObjectTypeInfo::ti_IppList:
            releaseFocus(bringToFront);
            showDisplayableList(dynamic_cast<DisplayAPI::List*>(widget), queue, type, bringToFront);
            break;
        case AGPObjectTypeInfo::ti_IppTable:
            releaseFocus(bringToFront);
            showDisplayableTable(dynamic_cast<DisplayAPI::Table*>(widget), queue, type, bringToFront);
            break;
        case AGPObjectTypeInfo::ti_IppForm:
            releaseFocus(bringToFront);
            showDisplayableForm(dynamic_cast<DisplayAPI::Form*>(widget), queue, type, bringToFront);
            break;
        case AGPObjectTypeInfo::ti_IppTextBox:
            releaseFocus(bringToFront);
            showDisplayableTextBox(dynamic_cast<DisplayAPI::TextBox*>(widget), queue, type, bringToFront);
            break;
        default:
            releaseFocus(bringToFront);
            showDisplayable(widget, queue, type, bringToFront);
        }
    }

    mTabSwitchOnPush = false;
    if (type == AGPMessage::UrlRequest_XML_push_force && mTabScreen != nullptr &&
        (mMultiTabState == 2 || mMultiTabState == 3)) {
        mTabScreen->leaveTabBar();
        mMultiTabState = 1;
    }
    mQueueState[queue].currentScreen = screenId;
    if (shown != nullptr) {
        shown->initTimer(mCommandListener);
        shown->startTimer();
    }

    const bool shownIsPopup = shown != nullptr && isPopupType(shown->getAGPObjectType());
    if (previous != nullptr && previous != screen && (!shownIsPopup || presentIsPopup)) {
        std::vector<AGPCommonBase*> elements;
        collectTree(previous, elements);
        for (AGPCommonBase* element : elements) {
            element->hideElement();
        }
        previous->setRedisplayNeeded(true);
    }
}

void AGPGUIHandler::commandShowScreenBack(AGPQueueNumber queue, bool bringToFront) {
    AGP_LOG(5, "commandShowScreenBack: Previous screen requested");
    if (!validQueue(queue) || mQueueState[queue].history.empty()) {
        return;
    }
    const AGPId id = mQueueState[queue].history.back();
    mQueueState[queue].history.pop_back();
    AGPIppScreen* screen = asScreen(lookUp(id));
    if (screen == nullptr) {
        return;
    }
    if (static_cast<long>(std::time(nullptr)) < screen->getCacheExpirationTime()) {
        reloadScreenElements(screen);
        mQueueState[queue].currentScreen = 0;
        commandShowScreen(screen, queue, true, AGPMessage::Command_Back, bringToFront);
    } else {
        screen->resendOriginatingURL(true);
    }
}

void AGPGUIHandler::commandShowScreenID(unsigned int screenID, AGPQueueNumber queue, bool bringToFront) {
    AGP_LOG(5, "commandShowScreenID: screen %i requested", static_cast<int>(screenID));
    if (mDisplay != nullptr) {
        AGPQueueNumber shownQueue = 0;
        if (typeOfShown(&shownQueue) == AGPObjectTypeInfo::ti_IppAlert) {
            mTabSwitchOnPush = true;
        }
    }
    if (!validQueue(queue)) {
        return;
    }
    AGPIppScreen* found = nullptr;
    for (AGPId id : mQueueState[queue].cache) {
        AGPIppScreen* screen = asScreen(lookUp(id));
        if (screen != nullptr && screen->getAGPID() == screenID) {
            found = screen;
        }
    }
    if (found == nullptr) {
        return;
    }
    if (static_cast<long>(std::time(nullptr)) < found->getCacheExpirationTime()) {
        reloadScreenElements(found);
        commandShowScreen(found, queue, false, AGPMessage::Unknown, bringToFront);
    } else {
        found->resendOriginatingURL(false);
    }
}

void AGPGUIHandler::reloadScreenElements(AGPIppScreen* screen) {
    if (screen == nullptr) {
        return;
    }
    if (screen->isRedisplayNeeded()) {
        std::vector<AGPCommonBase*> elements;
        collectTree(screen, elements);
        for (AGPCommonBase* element : elements) {
            element->reDisplayElement();
        }
        for (AGPCommonBase* element : elements) {
            element->reDisplayElement2ndRound();
        }
        screen->setRedisplayNeeded(false);
    }
    AGPDisplayable* shown = screen->getDisplayableElement();
    if (shown != nullptr && shown->getAGPObjectType() == AGPObjectTypeInfo::ti_IppAlert) {
        shown->reDisplayElement();
    }
}

void AGPGUIHandler::commandAlertBack(AGPQueueNumber queue, bool bringToFront) {
    AGP_LOG(5, "commandAlertBack: Previous alert screen requested");
    mTabSwitchOnPush = true;
    if (!validQueue(queue)) {
        return;
    }
    if (!mQueueState[queue].history.empty()) {
        AGP_LOG(5, "commandAlertBack: Previous screen request");
        const AGPId alert = mQueueState[queue].alert;
        commandShowScreenBack(queue, bringToFront);
        if (mQueueState[queue].alert == alert) {
            mQueueState[queue].alert = 0;
        }
        return;
    }
    if (queue == 0) {
        AGP_LOG(5, "commandAlertBack: Stop phonelet");
        stopPhonelet();
        return;
    }
    DeferredFocus focus(*this);
    CriticalSection lock(mGUILock);
    const AGPTab closed = queue - 1;
    const bool ownTab = hasTab(closed);
    if (!ownTab || tabCount() < 2) {
        DisplayAPI::Displayable* previous = findPreviousFullDisplayable(queue, false);
        if (previous == nullptr) {
            stopPhonelet();
            return;
        }
        if (mDisplay != nullptr) {
            mDisplay->setCurrent(previous);
        }
        mQueueState[queue].alert = 0;
        return;
    }
    closeTab(queue);
    if (mDisplay == nullptr) {
        return;
    }
    if (tabCount() > 1) {
        releaseFocusLater(true);
        mDisplay->setCurrent(mTabScreen);
        showAlertForQueueIfSet(getMessageQueueIdForCurrent(), bringToFront, mGUILock, queue);
        return;
    }
    // The one tab left is shown directly; what it shows is its own queue thread's to find.
    const AGPQueueNumber left = getMessageQueueIdForCurrent();
    runOnQueue(left, [this, left, bringToFront] {
        DeferredFocus focus(*this);
        CriticalSection lock(mGUILock);
        if (tabCount() == 1 && mDisplay != nullptr) {
            mDisplay->setCurrent(removeFirstTabOutOfTabScreen());
            showAlertForQueueIfSet(left, bringToFront, mGUILock, left);
        }
    });
}

void AGPGUIHandler::closeTab(AGPQueueNumber queue) {
    const AGPTab closed = queue - 1;
    int closedIndex = 0;
    {
        // Erased under the lock: the host's thread looks the tabs up at any time.
        std::lock_guard<std::mutex> state(mStateLock);
        closedIndex = mTabMap[closed];
        for (auto& entry : mTabMap) {
            if (entry.second > closedIndex) {
                --entry.second;
            }
        }
        mTabMap.erase(closed);
    }
    mTabScreen->removeTabAtIndex(closedIndex);
    // A tab opened again later starts afresh: no popup, no way back into the closed one.
    mQueueState[queue].alert = 0;
    mQueueState[queue].popupPlayer = 0;
    mQueueState[queue].currentScreen = 0;
    mQueueState[queue].history.clear();
    // Its cached screens go once this call is over (one of them may be running it), unless the
    // tab is open again by then.
    runOnQueue(queue, [this, queue, closed] {
        if (!hasTab(closed)) {
            AGP_LOG(5, "closeTab: dropping the %d cached screens of closed tab %d",
                    static_cast<int>(mQueueState[queue].cache.size()), closed);
            trimCacheAndHistory(queue, 0);
        }
    });
}

void AGPGUIHandler::hidePopup(unsigned int screenID, AGPQueueNumber queue) {
    AGPIppScreen* screen = getCurrentScreen(queue);
    AGPDisplayable* shown = screen != nullptr ? screen->getDisplayableElement() : nullptr;
    if (shown == nullptr) {
        // Nothing shown on the queue yet (the action runs while its screen is being built): there
        // is no popup to hide, and going back from here would end the application.
        AGP_LOG(5, "AGPDisplayable is NULL");
        return;
    }
    if (shown->getAGPObjectType() == AGPObjectTypeInfo::ti_IppAlert && screen->getAGPID() == screenID) {
        commandAlertBack(queue, true);
        return;
    }
    AGP_LOG(5, "There isn't Alert with screen ID: %d at tab : %d", static_cast<int>(screenID), queue);
}

void AGPGUIHandler::showAlertForQueueIfSet(AGPQueueNumber queue, bool bringToFront, Semaphore* heldLock,
                                           AGPQueueNumber callerQueue) {
    if (!validQueue(queue) || mQueueState[queue].alert == 0) {
        return;
    }
    if (callerQueue != queue) {
        // Another tab's alert is shown by that tab's queue thread, which owns it.
        runOnQueue(queue, [this, queue, bringToFront] {
            DeferredFocus focus(*this);
            showAlertForQueueIfSet(queue, bringToFront, nullptr, queue);
        });
        return;
    }
    const AGPId id = mQueueState[queue].alert;
    AGPDisplayable* alert = asDisplayableOfType(lookUp(id), AGPObjectTypeInfo::ti_IppAlert);
    if (alert == nullptr) {
        return;
    }
    if (heldLock != nullptr) {
        heldLock->give();
    }
    showDisplayableAlert(dynamic_cast<DisplayAPI::Alert*>(alert->getDisplayAPIDisplayable()), queue, id,
                         AGPMessage::Unknown, bringToFront);
    if (heldLock != nullptr) {
        heldLock->take(-1);
    }
}

void AGPGUIHandler::showDisplayableForm(DisplayAPI::Form* widget, AGPQueueNumber queue,
                                        AGPMessage::MessageType type, bool bringToFront) {
    showFullDisplayable(widget, queue, type, bringToFront);
}

void AGPGUIHandler::showDisplayableList(DisplayAPI::List* widget, AGPQueueNumber queue,
                                        AGPMessage::MessageType type, bool bringToFront) {
    showFullDisplayable(widget, queue, type, bringToFront);
}

void AGPGUIHandler::showDisplayableTable(DisplayAPI::Table* widget, AGPQueueNumber queue,
                                         AGPMessage::MessageType type, bool bringToFront) {
    showFullDisplayable(widget, queue, type, bringToFront);
}

void AGPGUIHandler::showDisplayableTextBox(DisplayAPI::TextBox* widget, AGPQueueNumber queue,
                                           AGPMessage::MessageType type, bool bringToFront) {
    showFullDisplayable(widget, queue, type, bringToFront);
}

void AGPGUIHandler::showFullDisplayable(DisplayAPI::Displayable* widget, AGPQueueNumber queue,
                                        AGPMessage::MessageType type, bool bringToFront) {
    CriticalSection lock(mGUILock);
    if (widget == nullptr) {
        AGP_LOG(2, "Displayable object not found - shouldn't happen");
        return;
    }
    widget->setWrapAround(false);
    if (queue <= 0 || tabCount() == 1) {
        if (mNoControlKey) {
            widget->setUsedWithTab(true, nullptr);
        }
        if (mDisplay != nullptr) {
            mDisplay->setCurrent(widget);
        }
        if (tabCount() == 1) {
            mFirstTabDisplayable = static_cast<AGPId>(widget->getOwnerId());
        }
        return;
    }
    if (tabCount() >= 2) {
        pullFirstTabDisplayableIntoTabScreen(queue, bringToFront);
    }
    if (mTabScreen == nullptr) {
        return;
    }
    setCurrentDisplayableForTabAtIndexInternal(queue, widget, type, bringToFront);
    widget->setUsedWithTab(true, mTabScreen);
    if (bringToFront && (isCurrentTabQueue(queue) || mTabSwitchOnPush) && mDisplay != nullptr) {
        mDisplay->setCurrent(mTabScreen);
    }
}

void AGPGUIHandler::showDisplayable(DisplayAPI::Displayable* widget, AGPQueueNumber queue,
                                    AGPMessage::MessageType type, bool bringToFront) {
    CriticalSection lock(mGUILock);
    if (mDisplay == nullptr) {
        return;
    }
    if (widget == nullptr) {
        mDisplay->setCurrent(nullptr);
        return;
    }
    if (queue <= 0 || tabCount() == 1) {
        mDisplay->setCurrent(widget);
        return;
    }
    if (tabCount() >= 2) {
        pullFirstTabDisplayableIntoTabScreen(queue, bringToFront);
    }
    if (mTabScreen != nullptr) {
        setCurrentDisplayableForTabAtIndexInternal(queue, widget, type, bringToFront);
        mDisplay->setCurrent(mTabScreen);
    }
}

void AGPGUIHandler::showOver(DisplayAPI::Displayable* widget) {
    mDisplay->setCurrent(nullptr);
    mDisplay->setCurrent(widget);
}

void AGPGUIHandler::showPopupForced(DisplayAPI::Displayable* widget, AGPQueueNumber queue, bool isAlert,
                                    bool bringToFront) {
    if (queue == 0 || (isAlert && tabCount() < 2)) {
        mDisplay->setCurrent(findPreviousFullDisplayable(queue));
    } else if (bringToFront && mTabScreen != nullptr) {
        selectTabOfQueue(queue);
        mDisplay->setCurrent(mTabScreen);
    }
    // The platform must get the previous screen up before the popup comes over it. The caller's
    // GUI lock is given back for the wait, so the host's show and the other tabs go on meanwhile;
    // the popup's own queue is the one waiting here, so its widget stays alive.
    AGP_LOG(5, "showPopupForced: waiting for the previous screen");
    mGUILock->give();
    std::this_thread::sleep_for(std::chrono::seconds(1));
    mGUILock->take(-1);
    if (bringToFront && mDisplay != nullptr) {
        mDisplay->setCurrent(widget);
    }
}

void AGPGUIHandler::showDisplayableAlert(DisplayAPI::Alert* widget, AGPQueueNumber queue,
                                         unsigned long alertId, AGPMessage::MessageType type,
                                         bool bringToFront) {
    DeferredFocus focus(*this);
    CriticalSection lock(mGUILock);
    if (mDisplay == nullptr) {
        return;
    }
    if (widget == nullptr) {
        mDisplay->setCurrent(nullptr);
        return;
    }
    const bool manyTabs = tabCount() >= 2 && mTabScreen != nullptr;
    bool general = false;
    if (mVisible && mFocusCounter == 0) {
        general = true;
    } else if (type == AGPMessage::UrlRequest_XML_push_active ||
               type == AGPMessage::UrlRequest_XML_push_indicate) {
        showOver(widget);
        mDeferredFocus = FocusRequest;
        ++mFocusCounter;
    } else if (type == AGPMessage::UrlRequest_XML_push_force) {
        showPopupForced(widget, queue, true, bringToFront);
    } else if (type == AGPMessage::Command_Back && mFocusCounter != 0) {
        showOver(widget);
        --mFocusCounter;
    } else {
        general = true;
    }
    if (general) {
        releaseFocusLater(bringToFront);
        if (!manyTabs) {
            if (bringToFront) {
                mDisplay->setCurrent(widget);
            }
        } else {
            pullFirstTabDisplayableIntoTabScreen(queue, bringToFront);
            if (bringToFront) {
                if (type == AGPMessage::UrlRequest_XML_push_force) {
                    selectTabOfQueue(queue);
                    mDisplay->setCurrent(mTabScreen);
                }
                if (type == AGPMessage::UrlRequest_XML_push_active ||
                    type == AGPMessage::UrlRequest_XML_push_indicate) {
                    mTabScreen->setCurrentTabIndex(mTabScreen->getCurrentTabIndex());
                    mDisplay->setCurrent(widget);
                } else if (isCurrentTabQueue(queue)) {
                    mDisplay->setCurrent(widget);
                }
            }
        }
    }
    if (validQueue(queue) && queue > 0) {
        mQueueState[queue].alert = static_cast<AGPId>(alertId);
    }
}

void AGPGUIHandler::showDisplayablePopupPlayer(DisplayAPI::PopupPlayer* widget, AGPQueueNumber queue,
                                               unsigned long playerId, AGPMessage::MessageType type,
                                               bool bringToFront) {
    DeferredFocus focus(*this);
    CriticalSection lock(mGUILock);
    if (mDisplay == nullptr) {
        return;
    }
    if (widget == nullptr) {
        mDisplay->setCurrent(nullptr);
        return;
    }
    bool general = false;
    if (mVisible) {
        if (type == AGPMessage::UrlRequest_XML_push_active) {
            showOver(widget);
            mDeferredFocus = FocusRequest;
        } else {
            general = true;
        }
    } else if (type == AGPMessage::UrlRequest_XML_push_active ||
               type == AGPMessage::UrlRequest_XML_push_indicate) {
        showOver(widget);
        mDeferredFocus = FocusRequest;
    } else if (type == AGPMessage::UrlRequest_XML_push_force) {
        showPopupForced(widget, queue, false, bringToFront);
    } else {
        general = true;
    }
    if (general) {
        releaseFocusLater(bringToFront);
        if (tabCount() < 2 || mTabScreen == nullptr) {
            if (bringToFront) {
                mDisplay->setCurrent(widget);
            }
        } else {
            pullFirstTabDisplayableIntoTabScreen(queue, bringToFront);
            if (bringToFront && type == AGPMessage::UrlRequest_XML_push_force) {
                selectTabOfQueue(queue);
                mDisplay->setCurrent(mTabScreen);
            }
            if (isCurrentTabQueue(queue)) {
                mDisplay->setCurrent(widget);
            }
        }
    }
    if (validQueue(queue) && queue > 0) {
        mQueueState[queue].popupPlayer = static_cast<AGPId>(playerId);
    }
}

// ---- History and cache ----

DisplayAPI::Displayable* AGPGUIHandler::findPreviousFullDisplayable(AGPQueueNumber queue,
                                                                    bool allowNoHistory) {
    AGPDisplayable* found = nullptr;
    if (validQueue(queue)) {
        const std::vector<AGPId>& history = mQueueState[queue].history;
        for (auto id = history.rbegin(); id != history.rend() && found == nullptr; ++id) {
            AGPCommonBase* element = lookUp(*id);
            if (AGPIppScreen* screen = asScreen(element)) {
                element = screen->getDisplayableElement();
            }
            found = asFullScreen(element);
            if (found != nullptr) {
                AGP_LOG(5, "findPreviousFullDisplayable: Previous full displayable found in history");
            }
        }
        const std::vector<AGPId>& cache = mQueueState[queue].cache;
        for (auto id = cache.rbegin(); id != cache.rend() && found == nullptr; ++id) {
            AGPIppScreen* screen = asScreen(lookUp(*id));
            if (screen == nullptr ||
                (!allowNoHistory && screen->getAGPHistory() == AGPIppScreen::HISTORY_NO)) {
                continue;
            }
            found = asFullScreen(screen->getDisplayableElement());
            if (found != nullptr) {
                AGP_LOG(5, "findPreviousFullDisplayable: Previous full displayable found in cache");
            }
        }
    }
    if (found == nullptr) {
        AGP_LOG(5, "findPreviousFullDisplayable: Previous full displayable NOT FOUND");
        return nullptr;
    }
    DisplayAPI::Displayable* widget = found->getDisplayAPIDisplayable();
    if (widget == nullptr) {
        AGP_LOG(5, "findPreviousFullDisplayable: DisplayAPI::Displayable object IS NULL");
    } else {
        AGP_LOG(5, "findPreviousFullDisplayable: DisplayAPI::Displayable object present, returning ...");
    }
    return widget;
}

bool AGPGUIHandler::isInHistory(AGPIppScreen* screen, AGPQueueNumber queue) {
    if (screen == nullptr || !validQueue(queue)) {
        return false;
    }
    const AGPId id = screen->getAGPObjectID();
    for (AGPId entry : mQueueState[queue].history) {
        if (entry == id && lookUp(entry) != nullptr) {
            return true;
        }
    }
    return false;
}

bool AGPGUIHandler::checkScreenID(AGPIppScreen* screen, AGPQueueNumber queue) {
    AGPDisplayable* shown = screen != nullptr ? screen->getDisplayableElement() : nullptr;
    if (shown == nullptr) {
        return false;
    }
    if (shown->getAGPObjectType() == AGPObjectTypeInfo::ti_IppList && screen->hasBack()) {
        return true;
    }
    if (isInHistory(screen, queue)) {
        return true;
    }
    return eraseSameScreenID(screen, queue);
}

bool AGPGUIHandler::eraseSameScreenID(AGPIppScreen* screen, AGPQueueNumber queue) {
    AGPDisplayable* shown = screen != nullptr ? screen->getDisplayableElement() : nullptr;
    if (shown == nullptr || !validQueue(queue)) {
        return false;
    }
    std::vector<AGPId>& cache = mQueueState[queue].cache;
    for (auto entry = cache.begin(); entry != cache.end(); ++entry) {
        AGPIppScreen* older = asScreen(lookUp(*entry));
        AGPDisplayable* olderElement = older != nullptr ? older->getDisplayableElement() : nullptr;
        if (olderElement == nullptr) {
            continue;
        }
        if (older == screen) {
            return false;
        }
        if (older->getAGPID() == screen->getAGPID() &&
            olderElement->getAGPObjectType() == shown->getAGPObjectType()) {
            const AGPId id = *entry;
            cache.erase(entry);
            destroyTree(id);
            return true;
        }
    }
    return false;
}

void AGPGUIHandler::cleanupCacheAndHistory(int maxSize) {
    for (AGPQueueNumber queue = 0; queue < QUEUE_COUNT; ++queue) {
        trimCacheAndHistory(queue, maxSize);
    }
}

void AGPGUIHandler::trimCacheAndHistory(AGPQueueNumber queue, int maxSize) {
    AGP_LOG(5, "cleanupCacheAndHistory called");
    if (!validQueue(queue)) {
        return;
    }
    const size_t limit = maxSize < 0 ? 0 : static_cast<size_t>(maxSize);
    std::vector<AGPId>& cache = mQueueState[queue].cache;
    std::vector<AGPId>& history = mQueueState[queue].history;
    // The screen on show stays while anything else can go (it is the last one left at size 0).
    const AGPId shown = limit > 0 ? mQueueState[queue].currentScreen.load() : 0;
    auto victim = cache.begin();
    while (cache.size() > limit && victim != cache.end()) {
        if (*victim == shown) {
            ++victim;
            continue;
        }
        const AGPId id = *victim;
        victim = cache.erase(victim);
        auto last = std::find(history.rbegin(), history.rend(), id);
        if (last != history.rend()) {
            history.erase(history.begin(), last.base());
        }
        destroyTree(id);
    }
}

// ---- Listeners, formats and focus bookkeeping ----

void AGPGUIHandler::addFocusListener(AGPPhoneletFocusListenerIfc* listener) {
    CriticalSection lock(mGUILock);
    if (std::find(mFocusListeners.begin(), mFocusListeners.end(), listener) == mFocusListeners.end()) {
        mFocusListeners.push_back(listener);
    }
}

void AGPGUIHandler::removeFocusListener(AGPPhoneletFocusListenerIfc* listener) {
    CriticalSection lock(mGUILock);
    mFocusListeners.erase(std::remove(mFocusListeners.begin(), mFocusListeners.end(), listener),
                          mFocusListeners.end());
}

void AGPGUIHandler::notifyFocusListeners(FocusNotification notification) {
    // Told from a copy and without the lock: a listener may add or remove listeners.
    std::vector<AGPPhoneletFocusListenerIfc*> listeners;
    {
        CriticalSection lock(mGUILock);
        listeners = mFocusListeners;
    }
    for (AGPPhoneletFocusListenerIfc* listener : listeners) {
        if (notification == FocusHidden) {
            listener->phoneletHidden();
        } else {
            listener->phoneletShown();
        }
    }
}

void AGPGUIHandler::setDateFormat(const std::string& format) {
    const auto lock = lockDateTimeListeners();
    const AGPDateTimeChangeListenerIfc::AGPDateFormat newFormat =
        AGPDateTimeChangeListenerIfc::getDateFormat(format);
    const AGPDateTimeChangeListenerIfc::AGPDateFormat oldFormat = mDateFormat.exchange(newFormat);
    if (oldFormat == newFormat) {
        return;
    }
    AGP_LOG(5, "Date format changed from %d to %d", static_cast<int>(oldFormat), static_cast<int>(newFormat));
    for (AGPDateTimeChangeListenerIfc* listener : mDateTimeListeners) {
        listener->dateFormatChanged(oldFormat, newFormat);
    }
}

void AGPGUIHandler::setTimeFormat(const std::string& format) {
    const auto lock = lockDateTimeListeners();
    const AGPDateTimeChangeListenerIfc::AGPTimeFormat newFormat =
        AGPDateTimeChangeListenerIfc::getTimeFormat(format);
    const AGPDateTimeChangeListenerIfc::AGPTimeFormat oldFormat = mTimeFormat.exchange(newFormat);
    if (oldFormat == newFormat) {
        return;
    }
    AGP_LOG(5, "Time format changed from %d to %d", static_cast<int>(oldFormat), static_cast<int>(newFormat));
    for (AGPDateTimeChangeListenerIfc* listener : mDateTimeListeners) {
        listener->timeFormatChanged(oldFormat, newFormat);
    }
}

void AGPGUIHandler::addDateTimeChangeListener(AGPDateTimeChangeListenerIfc* listener) {
    if (listener == nullptr) {
        return;
    }
    const auto lock = lockDateTimeListeners();
    mDateTimeListeners.push_back(listener);
}

void AGPGUIHandler::removeDateTimeChangeListener(AGPDateTimeChangeListenerIfc* listener) {
    const auto lock = lockDateTimeListeners();
    mDateTimeListeners.erase(std::remove(mDateTimeListeners.begin(), mDateTimeListeners.end(), listener),
                             mDateTimeListeners.end());
}

void AGPGUIHandler::releaseFocusLater(bool bringToFront) {
    if (mFocusCounter != 0 && bringToFront) {
        mFocusCounter = 0;
        mDeferredFocus = FocusRelease;
    }
}

void AGPGUIHandler::applyDeferredFocus() {
    switch (mDeferredFocus.exchange(FocusNone)) {
    case FocusRequest:
        requestPhoneletFocus();
        break;
    case FocusRelease:
        if (AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet()) {
            phonelet->AGPReleaseFocus();
        }
        break;
    default:
        break;
    }
}

void AGPGUIHandler::releaseFocus(bool bringToFront) {
    if (mFocusCounter != 0 && bringToFront) {
        mFocusCounter = 0;
        AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
        if (phonelet != nullptr) {
            phonelet->AGPReleaseFocus();
        }
    }
}

std::vector<AGPId> AGPGUIHandler::getCache(AGPQueueNumber queue) const {
    return validQueue(queue) ? mQueueState[queue].cache : std::vector<AGPId>();
}

std::vector<AGPId> AGPGUIHandler::getHistory(AGPQueueNumber queue) const {
    return validQueue(queue) ? mQueueState[queue].history : std::vector<AGPId>();
}

AGPId AGPGUIHandler::getAlertId(AGPQueueNumber queue) const {
    return validQueue(queue) ? mQueueState[queue].alert.load() : 0;
}

AGPId AGPGUIHandler::getPopupPlayerId(AGPQueueNumber queue) const {
    return validQueue(queue) ? mQueueState[queue].popupPlayer.load() : 0;
}
