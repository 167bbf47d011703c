// Key entry for the phonelet: keypad subscription while the application is shown, LEDs.
#include "AGPKeysHandler.h"

#define AGP_LOG_MODULE "AGPKeysHandler"
#define AGP_LOG_SOURCE "./src/AGPKeysHandler.cpp"

#include "AGPGUIHandler.h"
#include "AGPKeyPressedListenerIfc.h"
#include "AGPLog.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "phonelet/PhoneletManagerIfc.h"
#include "physical/PhysicalInterfaceServiceIfc.h"
#include "threads/CriticalSection.h"
#include "threads/Semaphore.h"

AGPKeysHandler::AGPKeysHandler()
    : mSubscriptions{PhysDefs::KeyGrpButtonEvents()}, mLock(new Semaphore(1, 1, true)) {}

AGPKeysHandler::~AGPKeysHandler() {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        gui->removeFocusListener(this);
    }
    {
        CriticalSection lock(mLock);
        stopListening();
        mKeyListener = nullptr;
    }
    delete mLock;
}

bool AGPKeysHandler::startAGPKeysHandler(PhysicalInterfaceServiceIfc* physical, PhoneletManagerIfc* manager) {
    if (physical == nullptr) {
        AGP_LOG(2, "AGPKeysHandler startup failed: can't find Physical Interface Service");
        return false;
    }
    if (manager == nullptr) {
        AGP_LOG(2, "AGPKeysHandler startup failed: can't find Phonelet Manager");
        return false;
    }
    mPhysicalInterface = physical;
    mPhoneletManager = manager;
    AGPPhoneletManager::getAGPGUIHandler()->addFocusListener(this);
    return true;
}

void AGPKeysHandler::registerKeyPressedListener(AGPKeyPressedListenerIfc* listener) {
    if (listener == nullptr) {
        return;
    }
    CriticalSection lock(mLock);
    AGPKeyPressedListenerIfc* previous = mKeyListener;
    mKeyListener = listener;
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (phonelet != nullptr) {
        phonelet->disableDialling();
    }
    if (previous != nullptr && previous != listener) {
        previous->stopListening();
    }
}

void AGPKeysHandler::unregisterKeyPressedListener(AGPKeyPressedListenerIfc* listener) {
    CriticalSection lock(mLock);
    if (listener == nullptr || listener != mKeyListener) {
        return;
    }
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (phonelet != nullptr) {
        phonelet->enableDialling();
    }
    mKeyListener = nullptr;
}

void AGPKeysHandler::processKeyPressed(int keyCode, PhysDefs::actionType) {
    CriticalSection lock(mLock);
    if (mKeyListener != nullptr) {
        mKeyListener->keyPressed(keyCode);
    }
}

void AGPKeysHandler::startListening() {
    if (mPhysicalInterface == nullptr) {
        return;
    }
    AGP_LOG(5, "AGPKeysHandler : Register listener for physical Ifc");
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (phonelet != nullptr) {
        AGP_LOG(5, "AGPKeysHandler : subscribe for keypads");
        mPhysicalInterface->subscribe(phonelet, mSubscriptions);
    }
}

void AGPKeysHandler::stopListening() {
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (mPhysicalInterface != nullptr && phonelet != nullptr) {
        mPhysicalInterface->unsubscribe(phonelet);
    }
}

void AGPKeysHandler::phoneletShown() {
    CriticalSection lock(mLock);
    startListening();
}

void AGPKeysHandler::phoneletHidden() {
    CriticalSection lock(mLock);
    stopListening();
}

void AGPKeysHandler::turnLedOn() {
    setLed(true);
}

void AGPKeysHandler::turnLedOff() {
    setLed(false);
}

void AGPKeysHandler::setLed(bool on) {
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (mPhoneletManager == nullptr || phonelet == nullptr) {
        return;
    }
    const std::string name = phonelet->GetPhoneletName();
    mPhoneletManager->setLed(name, on);
    if (on) {
        AGP_LOG(5, "AGPKeysHandler::turnLedOn called for %s", name.c_str());
    } else {
        AGP_LOG(5, "AGPKeysHandler::turnLedOff called for %s", name.c_str());
    }
}
