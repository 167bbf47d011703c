// A command of a screen: soft key, menu entry, automatic timer or reaction to a focus event.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "AGPCommonBase.h"
#include "AGPKeyValueProviderIfc.h"
#include "AGPMessage.h"

class AGPKey;
class AGPValue;

namespace DisplayAPI {
class MenuCommand;
}

class AGPIppCommand : public AGPCommonBase, public AGPKeyValueProviderIfc {
public:
    enum AGPType : std::int32_t {
        SELECT = 0,
        BACK = 1,
        UPDATE = 2,
        SCREEN = 3,
        CANCEL = 4,
        EXIT = 5,
        ACTION = 6,
        TYPE_NOT_GIVEN = 7
    };
    enum AGPDisplayOn : std::int32_t { DISPLAYON_DEFAULT = 0, LISTITEM = 1, BOTH = 2, NONE = 3 };
    enum AGPSelect : std::int32_t { SELECT_YES = 0, SELECT_NO = 1 };
    enum AGPDefault : std::int32_t { DEFAULT_YES = 0, DEFAULT_NO = 1 };
    enum AGPEvent : std::int32_t { EVENT_NONE = 0, ONFOCUS = 1, ONBLUR = 2 };

    AGPIppCommand();
    AGPIppCommand(const AGPIppCommand&) = delete;
    AGPIppCommand& operator=(const AGPIppCommand&) = delete;
    ~AGPIppCommand() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppCommand; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool addContent(std::string& text) override;
    bool isValid() override;
    // Creates the menu command; runs after the children (Label) are initialised.
    void initializeElement() override;

    void gatherKeyValues(std::multimap<std::string, std::string>& keyValues) override;

    AGPType getAGPType() const { return mType; }
    std::uint32_t getAGPPriority() const { return mPriority; }
    std::uint32_t getAGPAuto() const { return mAuto; }
    AGPDisplayOn getAGPDisplayOn() const { return mDisplayOn; }
    AGPSelect getAGPSelect() const { return mSelect; }
    AGPDefault getAGPDefault() const { return mDefault; }
    AGPEvent getAGPEvent() const { return mEvent; }
    AGPKey* getAGPKey() const { return mKey; }
    AGPValue* getAGPValue() const { return mValue; }
    // The number of the ScreenID child, 0 without one.
    unsigned int getScreenID();
    AGPMessage::MessageType getMessageType() const { return mMessageType; }
    DisplayAPI::MenuCommand* getMenuCommand() const { return mMenuCommand; }
    // The content of the Label child, or the empty text.
    std::string getLabelText();

    // Runs the IppAction children, the first of each action type only.
    void invokeAction();

    bool operator==(AGPIppCommand& other);

    static bool compareByPriority(AGPIppCommand* a, AGPIppCommand* b);
    static bool compareByUniqueness(AGPIppCommand* a, AGPIppCommand* b);
    // Keeps the first of each group of equal commands; the kept ones end in reverse input order.
    static void removeDuplicitCommands(std::vector<AGPIppCommand*>& commands);

    bool isCountValidLabel() { return mLabelCount.isCountValid(); }
    bool isCountValidScreenID() { return mScreenIDCount.isCountValid(); }
    bool isCountValidAGPIppAction() { return mIppActionCount.isCountValid(); }

private:
    AGPChildCount mLabelCount;
    AGPChildCount mScreenIDCount;
    AGPChildCount mIppActionCount;
    AGPType mType;
    bool mTypeGiven;
    std::uint32_t mPriority;
    std::uint32_t mAuto;
    AGPDisplayOn mDisplayOn;
    AGPSelect mSelect;
    AGPDefault mDefault;
    AGPEvent mEvent;
    AGPKey* mKey;
    AGPValue* mValue;
    AGPMessage::MessageType mMessageType;
    DisplayAPI::MenuCommand* mMenuCommand;
};
