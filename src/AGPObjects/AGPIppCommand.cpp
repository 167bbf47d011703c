// A command of a screen: soft key, menu entry, automatic timer or reaction to a focus event.
#include "AGPIppCommand.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppCommand.cpp"

#include <algorithm>
#include <string_view>

#include "AGPIppAction.h"
#include "AGPKey.h"
#include "AGPObjectPool.h"
#include "AGPScreenID.h"
#include "AGPUtils.h"
#include "AGPValue.h"
#include "display/MenuCommand.h"

using namespace std::string_view_literals;

namespace {

// A bad or negative number counts as 0, like a missing attribute.
std::uint32_t parseCount(const std::string& text) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        return 0;
    }
    return static_cast<std::uint32_t>(number);
}

bool keyFailed(const AGPKey* key) {
    return AGPObjectPool::isPooled(*key, AGPObjectPool::getAGPKey_PARSE_FAILED());
}

bool valueFailed(const AGPValue* value) {
    return AGPObjectPool::isPooled(*value, AGPObjectPool::getAGPValue_PARSE_FAILED());
}

struct TypeEntry {
    const char* name;
    AGPIppCommand::AGPType type;
    const char* label;
    AGPMessage::MessageType message;
};

const TypeEntry kTypes[] = {
    {"SELECT", AGPIppCommand::SELECT, "Select", AGPMessage::Command_Select},
    {"BACK", AGPIppCommand::BACK, "Back", AGPMessage::Command_Back},
    {"UPDATE", AGPIppCommand::UPDATE, "Update", AGPMessage::Command_Update},
    {"SCREEN", AGPIppCommand::SCREEN, "Screen", AGPMessage::Command_Screen},
    {"CANCEL", AGPIppCommand::CANCEL, "Cancel", AGPMessage::Command_Cancel},
    {"EXIT", AGPIppCommand::EXIT, "Exit", AGPMessage::Command_Exit},
    {"ACTION", AGPIppCommand::ACTION, "Action", AGPMessage::Command_Action},
};

bool sameLabel(AGPCommonBase* a, AGPCommonBase* b) {
    if (a == nullptr || b == nullptr) {
        return a == b;
    }
    return a->getContent() == b->getContent();
}

} // namespace

AGPIppCommand::AGPIppCommand()
    : mLabelCount(0, 1), mScreenIDCount(0, 1), mIppActionCount(0, 3), mType(TYPE_NOT_GIVEN),
      mTypeGiven(false), mPriority(0), mAuto(0), mDisplayOn(DISPLAYON_DEFAULT), mSelect(SELECT_NO),
      mDefault(DEFAULT_NO), mEvent(EVENT_NONE), mKey(new AGPKey("null")), mValue(new AGPValue("")),
      mMessageType(AGPMessage::Command_Error), mMenuCommand(nullptr) {
    registerElement();
}

AGPIppCommand::~AGPIppCommand() {
    unregisterElement();
    delete mMenuCommand;
    delete mKey;
    delete mValue;
}

bool AGPIppCommand::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Label:
        return addCountedChild(mLabelCount, child);
    case AGPObjectTypeInfo::ti_ScreenID:
        return addCountedChild(mScreenIDCount, child);
    case AGPObjectTypeInfo::ti_IppAction:
        return addCountedChild(mIppActionCount, child);
    default:
        return false;
    }
}

bool AGPIppCommand::addAttribute(std::string& name, std::string& value) {
    if (name == "Type"sv) {
        for (const TypeEntry& entry : kTypes) {
            if (value == entry.name) {
                mType = entry.type;
                mTypeGiven = true;
                return true;
            }
        }
        return false;
    }
    if (name == "Priority"sv) {
        mPriority = parseCount(value);
        return true;
    }
    if (name == "Auto"sv) {
        mAuto = parseCount(value);
        return true;
    }
    if (name == "DisplayOn"sv) {
        mDisplayOn = value == "LISTITEM" ? LISTITEM
                     : value == "BOTH"   ? BOTH
                     : value == "NONE"   ? NONE
                                         : DISPLAYON_DEFAULT;
        return true;
    }
    if (name == "Select"sv) {
        mSelect = value == "YES" ? SELECT_YES : SELECT_NO;
        return true;
    }
    if (name == "Default"sv) {
        mDefault = value == "YES" ? DEFAULT_YES : DEFAULT_NO;
        return true;
    }
    if (name == "Event"sv) {
        mEvent = value == "ONFOCUS" ? ONFOCUS : value == "ONBLUR" ? ONBLUR : EVENT_NONE;
        return true;
    }
    if (name == "Key"sv) {
        delete mKey;
        mKey = AGPKey::parseAGPKey(value);
        return !keyFailed(mKey);
    }
    if (name == "Value"sv) {
        delete mValue;
        mValue = AGPValue::parseAGPValue(value);
        return !valueFailed(mValue);
    }
    return false;
}

bool AGPIppCommand::addContent(std::string&) {
    return false;
}

bool AGPIppCommand::isValid() {
    return mTypeGiven && isCountValidLabel() && isCountValidScreenID() && isCountValidAGPIppAction();
}

void AGPIppCommand::initializeElement() {
    std::string label;
    for (const TypeEntry& entry : kTypes) {
        if (entry.type == mType) {
            label = entry.label;
            mMessageType = entry.message;
        }
    }
    const std::string given = getLabelText();
    if (!given.empty()) {
        label = given;
    }
    delete mMenuCommand;
    mMenuCommand = new DisplayAPI::MenuCommand(label, static_cast<int>(mMessageType));
    mMenuCommand->setOwnerId(mAGPId);
}

void AGPIppCommand::gatherKeyValues(std::multimap<std::string, std::string>& keyValues) {
    if (mKey == nullptr || mValue == nullptr) {
        return;
    }
    const std::string key = keyFailed(mKey) ? std::string("null") : mKey->getValueText();
    const std::string value = valueFailed(mValue) ? std::string() : mValue->getValueText();
    if (key == "null" && value.empty()) {
        return;
    }
    keyValues.insert(std::make_pair(key, value));
}

unsigned int AGPIppCommand::getScreenID() {
    auto* screenID = static_cast<AGPScreenID*>(getChildByType(AGPObjectTypeInfo::ti_ScreenID));
    return screenID != nullptr ? static_cast<unsigned int>(screenID->getScreenID()) : 0;
}

std::string AGPIppCommand::getLabelText() {
    AGPCommonBase* label = getChildByType(AGPObjectTypeInfo::ti_Label);
    return label != nullptr ? label->getContent() : std::string();
}

void AGPIppCommand::invokeAction() {
    bool done[AGPIppAction::TYPE_NOT_GIVEN] = {};
    std::vector<AGPCommonBase*> actions;
    getChildrenByType(AGPObjectTypeInfo::ti_IppAction, actions);
    for (AGPCommonBase* child : actions) {
        auto* action = static_cast<AGPIppAction*>(child);
        const AGPIppAction::AGPType type = action->getAGPType();
        if (type < 0 || type >= AGPIppAction::TYPE_NOT_GIVEN || done[type]) {
            continue;
        }
        done[type] = true;
        action->invoke();
    }
}

bool AGPIppCommand::operator==(AGPIppCommand& other) {
    auto sameKey = mKey == other.mKey || (mKey != nullptr && other.mKey != nullptr && *mKey == *other.mKey);
    auto sameValue =
        mValue == other.mValue || (mValue != nullptr && other.mValue != nullptr && *mValue == *other.mValue);
    return mType == other.mType && sameKey && sameValue && mPriority == other.mPriority &&
           mDisplayOn == other.mDisplayOn &&
           sameLabel(getChildByType(AGPObjectTypeInfo::ti_Label),
                     other.getChildByType(AGPObjectTypeInfo::ti_Label));
}

bool AGPIppCommand::compareByPriority(AGPIppCommand* a, AGPIppCommand* b) {
    return a->mPriority < b->mPriority;
}

bool AGPIppCommand::compareByUniqueness(AGPIppCommand* a, AGPIppCommand* b) {
    if (a == b) {
        return false;
    }
    if (a == nullptr || b == nullptr) {
        return a != nullptr;
    }
    return !(*a == *b);
}

void AGPIppCommand::removeDuplicitCommands(std::vector<AGPIppCommand*>& commands) {
    std::vector<AGPIppCommand*> kept;
    for (AGPIppCommand* command : commands) {
        const bool seen = std::any_of(kept.begin(), kept.end(), [command](AGPIppCommand* earlier) {
            return !compareByUniqueness(earlier, command) && !compareByUniqueness(command, earlier);
        });
        if (!seen) {
            kept.push_back(command);
        }
    }
    commands.assign(kept.rbegin(), kept.rend());
}
