// Key entry for the phonelet: keypad subscription while the application is shown, LEDs.
#pragma once

#include <vector>

#include "AGPPhoneletFocusListenerIfc.h"
#include "physical/PhysDefs.h"

class AGPKeyPressedListenerIfc;
class PhoneletManagerIfc;
class PhysicalInterfaceServiceIfc;
class Semaphore;

// Lifetime: created and deleted by the service registry. The key listener is borrowed: an
// element registers itself and unregisters in its destructor, both under the lock that key
// delivery holds, so a listener is never called after it unregistered. The lock is re-entrant:
// a listener told to stop listening unregisters itself from inside the call.
class AGPKeysHandler : public AGPPhoneletFocusListenerIfc {
public:
    AGPKeysHandler();
    virtual ~AGPKeysHandler();
    AGPKeysHandler(const AGPKeysHandler&) = delete;
    AGPKeysHandler& operator=(const AGPKeysHandler&) = delete;

    bool startAGPKeysHandler(PhysicalInterfaceServiceIfc* physical, PhoneletManagerIfc* manager);

    void registerKeyPressedListener(AGPKeyPressedListenerIfc* listener);
    void unregisterKeyPressedListener(AGPKeyPressedListenerIfc* listener);
    // A key of the phone's keypad was pressed: handed to the current listener, if any.
    void processKeyPressed(int keyCode, PhysDefs::actionType action);

    void startListening();
    void stopListening();

    // The LED of the application's key.
    void turnLedOn();
    void turnLedOff();

    PhysicalInterfaceServiceIfc* getPhysicalInterface() const { return mPhysicalInterface; }
    PhoneletManagerIfc* getPhoneletManager() const { return mPhoneletManager; }

    void phoneletHidden() override;
    void phoneletShown() override;

private:
    void setLed(bool on);

    PhysicalInterfaceServiceIfc* mPhysicalInterface = nullptr;
    PhoneletManagerIfc* mPhoneletManager = nullptr;
    AGPKeyPressedListenerIfc* mKeyListener = nullptr;
    std::vector<PhysDefs::SubscriptionGrp> mSubscriptions;
    Semaphore* mLock;
};
