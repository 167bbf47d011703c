// The presentation core: the one object that drives the widget library for the whole application.
#include "AGPGUIHandler.h"

#define AGP_LOG_MODULE "AGPGUIHandler"
#define AGP_LOG_SOURCE "./src/AGPGUIHandler.cpp"

#include <algorithm>

#include "AGPCommandListener.h"
#include "AGPDataObserver.h"
#include "AGPItemStateListener.h"
#include "AGPLog.h"
#include "AGPMenuCommandListener.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletFocusListenerIfc.h"
#include "AGPPhoneletManager.h"
#include "display/Display.h"
#include "display/List.h"
#include "display/TabScreen.h"
#include "phonelet/PhoneletManagerIfc.h"
#include "text/TranslationInfo.h"
#include "threads/CriticalSection.h"

namespace {

const int kMaxTabs = 3;

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

} // namespace

AGPGUIHandler::AGPGUIHandler()
    : mDisplay(nullptr), mGUILock(new Semaphore(1, 1, false)), mVisible(false), mTabScreen(nullptr),
      mCommandListener(nullptr), mMenuCommandListener(nullptr), mItemStateListener(nullptr),
      mPhoneletManager(nullptr), mDateFormat("DD.MM.YYYY"), mTimeFormat("24HR"), mMultiTabState(0),
      mFocusCounter(0), mNoControlKey(true), mShown(false), mTabPlaceholders(kMaxTabs, nullptr) {}

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

void AGPGUIHandler::show() {
    mShown = true;
    mDisplay->show();
    mVisible = true;
    notifyFocusListeners(FocusShown);
}

void AGPGUIHandler::hide() {
    mShown = false;
    mDisplay->hide();
    mVisible = false;
    notifyFocusListeners(FocusHidden);
}

void AGPGUIHandler::tabStatusChange(bool active) {
    AGP_LOG(5, "tabStatusChange() called, active=%i, visible=%i, MultiTabState=%d", active, mVisible,
            mMultiTabState);
    if (active) {
        if (mMultiTabState == 2 && mTabScreen != nullptr) {
            mTabScreen->leaveTabBarUpwards();
        }
        mMultiTabState = 3;
        return;
    }
    if (mShown) {
        mDisplay->show();
        mVisible = true;
    }
}

void AGPGUIHandler::phoneletTabStatusChange(AGPMessage& message, AGPQueueNumber queue) {
    AGP_LOG(5, "phoneletTabStatusChange called (message=%s, queueId=%d)",
            message.getMessageTypeString().c_str(), queue);
}

void AGPGUIHandler::tab(int direction) {
    if (mTabScreen == nullptr || mTabMap.size() < 2) {
        return;
    }
    if (mDisplay != nullptr) {
        mDisplay->setCurrent(mTabScreen);
    }
    if (direction == 1) {
        mTabScreen->nextTab();
    } else if (direction == -1) {
        mTabScreen->previousTab();
    }
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
    if (mTabScreen->numberOfTabs() == 0 && mTabMap.size() == 1) {
        const AGPTab registered = mTabMap.begin()->first;
        mTabMap.clear();
        initTab(registered, translator);
    }
    const bool initialised = initTab(tab, translator);
    if (initialised && mTabMap.size() == 2 && mDisplay != nullptr) {
        mDisplay->setCurrent(mTabScreen);
    }
    return initialised;
}

bool AGPGUIHandler::initTab(AGPTab tab, Translator* translator) {
    if (mTabMap.count(tab) != 0) {
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
    const int index = static_cast<int>(mTabMap.size());
    mTabMap[tab] = index;
    return true;
}

bool AGPGUIHandler::isTabInitialized(AGPTab tab) const {
    return mTabMap.count(tab) != 0;
}

AGPQueueNumber AGPGUIHandler::tabIdxToQueueId(int tabIndex) const {
    for (const auto& entry : mTabMap) {
        if (entry.second == tabIndex) {
            return entry.first + 1;
        }
    }
    return 0;
}

int AGPGUIHandler::queueIdToTabIdx(AGPQueueNumber queue) const {
    auto found = mTabMap.find(queue - 1);
    return found == mTabMap.end() ? 0 : found->second;
}

AGPQueueNumber AGPGUIHandler::getMessageQueueIdForCurrent() {
    if (mTabScreen == nullptr) {
        return 0;
    }
    if (mTabMap.size() >= 2) {
        return tabIdxToQueueId(mTabScreen->getCurrentTabIndex());
    }
    if (mTabMap.size() == 1) {
        return mTabMap.begin()->first + 1;
    }
    return 0;
}

bool AGPGUIHandler::processXmlTreeObject(AGPCommonBase*, AGPQueueNumber, AGPMessage::MessageType,
                                         const std::string&, long, bool) {
    return false;
}

// Alerts cannot be shown yet, so there is none to leave.
void AGPGUIHandler::hidePopup(unsigned int, AGPQueueNumber) {}

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
    CriticalSection lock(mGUILock);
    for (AGPPhoneletFocusListenerIfc* listener : mFocusListeners) {
        if (notification == FocusHidden) {
            listener->phoneletHidden();
        } else {
            listener->phoneletShown();
        }
    }
}

void AGPGUIHandler::setDateFormat(const std::string& format) {
    mDateFormat = format;
}

void AGPGUIHandler::setTimeFormat(const std::string& format) {
    mTimeFormat = format;
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
