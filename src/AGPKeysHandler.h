// Key entry for the phonelet: keypad subscription while the application is shown, LEDs.
#pragma once

#include "AGPPhoneletFocusListenerIfc.h"
#include "physical/PhysDefs.h"

class PhoneletManagerIfc;
class PhysicalInterfaceServiceIfc;

class AGPKeysHandler : public AGPPhoneletFocusListenerIfc {
public:
    AGPKeysHandler() = default;
    virtual ~AGPKeysHandler();
    AGPKeysHandler(const AGPKeysHandler&) = delete;
    AGPKeysHandler& operator=(const AGPKeysHandler&) = delete;

    bool startAGPKeysHandler(PhysicalInterfaceServiceIfc* physical, PhoneletManagerIfc* manager);
    // A key of the phone's keypad was pressed; the digit collection of key elements uses it.
    void processKeyPressed(int key, PhysDefs::actionType action);

    // The LED takes effect with the key handling; until then a request is dropped.
    void turnLedOn() {}
    void turnLedOff() {}

    PhysicalInterfaceServiceIfc* getPhysicalInterface() const { return mPhysicalInterface; }
    PhoneletManagerIfc* getPhoneletManager() const { return mPhoneletManager; }

    void phoneletHidden() override {}
    void phoneletShown() override {}

private:
    PhysicalInterfaceServiceIfc* mPhysicalInterface = nullptr;
    PhoneletManagerIfc* mPhoneletManager = nullptr;
};
