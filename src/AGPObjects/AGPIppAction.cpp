// A phone function run when its screen is shown or its command is triggered.
#include "AGPIppAction.h"

#include <string_view>

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppAction.cpp"

#include "AGPAudioHandler.h"
#include "AGPCallHandler.h"
#include "AGPGUIHandler.h"
#include "AGPIppScreen.h"
#include "AGPIppTone.h"
#include "AGPKeysHandler.h"
#include "AGPPhoneletManager.h"

using namespace std::string_view_literals;

namespace {

struct TypeName {
    const char* name;
    AGPIppAction::AGPType type;
};

const TypeName kTypes[] = {
    {"MAKECALL", AGPIppAction::MAKECALL},   {"ENDCALL", AGPIppAction::ENDCALL},
    {"TURNLEDON", AGPIppAction::TURNLEDON}, {"TURNLEDOFF", AGPIppAction::TURNLEDOFF},
    {"HIDEPOPUP", AGPIppAction::HIDEPOPUP}, {"PLAYTONE", AGPIppAction::PLAYTONE},
};

} // namespace

AGPIppAction::AGPIppAction()
    : mNumberCount(0, 1), mIppToneCount(0, 1), mType(TYPE_NOT_GIVEN), mFocus(FOCUS_YES), mTypeGiven(false),
      mDone(false) {
    registerElement();
}

AGPIppAction::~AGPIppAction() {
    unregisterElement();
}

bool AGPIppAction::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Encapsulation_s:
        return addCountedChild(mNumberCount, child);
    case AGPObjectTypeInfo::ti_IppTone:
        return addCountedChild(mIppToneCount, child);
    default:
        return false;
    }
}

bool AGPIppAction::addAttribute(std::string& name, std::string& value) {
    if (name == "Type"sv) {
        for (const TypeName& entry : kTypes) {
            if (value == entry.name) {
                mType = entry.type;
                mTypeGiven = true;
                return true;
            }
        }
        return false;
    }
    if (name == "Focus"sv) {
        mFocus = value == "NO" ? FOCUS_NO : FOCUS_YES;
        return true;
    }
    return false;
}

bool AGPIppAction::isValid() {
    return mTypeGiven && isCountValidNumber() && isCountValidAGPIppTone();
}

// The phone services reached here may not be running (stopped phonelet); an action then does its
// bookkeeping only.
void AGPIppAction::invoke() {
    const bool inCommand =
        mParent != nullptr && mParent->getAGPObjectType() == AGPObjectTypeInfo::ti_IppCommand;
    if (mDone && !inCommand) {
        return;
    }
    AGPCommonBase* number = getChildByType(AGPObjectTypeInfo::ti_Encapsulation_s);
    switch (mType) {
    case TURNLEDON:
    case TURNLEDOFF: {
        AGPKeysHandler* keys = AGPPhoneletManager::findAGPKeysHandler();
        if (keys != nullptr) {
            if (mType == TURNLEDON) {
                keys->turnLedOn();
            } else {
                keys->turnLedOff();
            }
        }
        mDone = true;
        break;
    }
    case PLAYTONE: {
        auto* tone = static_cast<AGPIppTone*>(getChildByType(AGPObjectTypeInfo::ti_IppTone));
        if (tone == nullptr) {
            break;
        }
        AGPAudioHandler* audio = AGPPhoneletManager::findAGPAudioHandler();
        if (audio != nullptr && tone->getAGPLength() != AGPIppTone::LENGTH_NOT_GIVEN) {
            audio->playBeep(static_cast<AGPAudioHandler::AGPBeepType>(tone->getAGPLength()));
        }
        mDone = true;
        break;
    }
    case HIDEPOPUP: {
        AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
        if (gui != nullptr && mParent != nullptr &&
            mParent->getAGPObjectType() == AGPObjectTypeInfo::ti_IppScreen) {
            gui->hidePopup(static_cast<AGPIppScreen*>(mParent)->getAGPID(), mQueueID);
        }
        break;
    }
    case MAKECALL: {
        if (number == nullptr) {
            break;
        }
        AGPCallHandler* calls = AGPPhoneletManager::findAGPCallHandler();
        if (calls != nullptr) {
            std::string destination = number->getContent();
            bool takeFocus = isFocus();
            calls->MakeOutgoingCall(destination, takeFocus);
        }
        mDone = true;
        break;
    }
    case ENDCALL: {
        AGPCallHandler* calls = AGPPhoneletManager::findAGPCallHandler();
        if (calls != nullptr) {
            std::string destination = number != nullptr ? number->getContent() : std::string();
            calls->ClearOutgoingCall(destination);
        }
        mDone = true;
        break;
    }
    default:
        break;
    }
}
