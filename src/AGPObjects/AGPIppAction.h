// A phone function run when its screen is shown or its command is triggered.
#pragma once

#include <cstdint>

#include "AGPCommonBase.h"

class AGPIppAction : public AGPCommonBase {
public:
    enum AGPType : std::int32_t {
        MAKECALL = 0,
        ENDCALL = 1,
        TURNLEDON = 2,
        TURNLEDOFF = 3,
        HIDEPOPUP = 4,
        PLAYTONE = 5,
        TYPE_NOT_GIVEN = 6
    };
    enum AGPFocus : std::int32_t { FOCUS_YES = 0, FOCUS_NO = 1 };

    AGPIppAction();
    AGPIppAction(const AGPIppAction&) = delete;
    AGPIppAction& operator=(const AGPIppAction&) = delete;
    ~AGPIppAction() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppAction; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override;

    AGPType getAGPType() const { return mType; }
    AGPFocus getAGPFocus() const { return mFocus; }
    bool isFocus() const { return mFocus != FOCUS_NO; }
    bool isDone() const { return mDone; }
    void invoke();

    bool isCountValidNumber() { return mNumberCount.isCountValid(); }
    bool isCountValidAGPIppTone() { return mIppToneCount.isCountValid(); }

private:
    AGPChildCount mNumberCount;
    AGPChildCount mIppToneCount;
    AGPType mType;
    AGPFocus mFocus;
    bool mTypeGiven;
    bool mDone;
};
