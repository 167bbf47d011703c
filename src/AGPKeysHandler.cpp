// Key entry for the phonelet: keypad subscription while the application is shown, LEDs.
#include "AGPKeysHandler.h"

#define AGP_LOG_MODULE "AGPKeysHandler"
#define AGP_LOG_SOURCE "./src/AGPKeysHandler.cpp"

#include "AGPGUIHandler.h"
#include "AGPLog.h"
#include "AGPPhoneletManager.h"

AGPKeysHandler::~AGPKeysHandler() {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        gui->removeFocusListener(this);
    }
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

// Key elements that collect digits arrive with the key element; until then there is nobody to
// hand a key to.
void AGPKeysHandler::processKeyPressed(int, PhysDefs::actionType) {}
