// A read-only labelled text in a form; it sends nothing.
#pragma once

#include "AGPCommonBase.h"
#include "AGPDisplayItemIfc.h"

namespace DisplayAPI {
class TextField;
}

// The widget lives from initialization (or redisplay) to hiding. Once appended it belongs to
// the form widget; one that never entered a form is deleted here.
class AGPIppStringItem : public AGPCommonBase, public AGPDisplayItemIfc {
public:
    AGPIppStringItem();
    AGPIppStringItem(const AGPIppStringItem&) = delete;
    AGPIppStringItem& operator=(const AGPIppStringItem&) = delete;
    ~AGPIppStringItem() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppStringItem; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& /*name*/, std::string& /*value*/) override { return false; }
    bool isValid() override { return mLabelCount.isCountValid() && mTextCount.isCountValid(); }
    void initializeElement() override { createAndInitDisplayElements(); }
    void reDisplayElement() override { createAndInitDisplayElements(); }
    void hideElement() override;

    DisplayAPI::Item* getDisplayItem() override;
    void setContextMenuArrowIcon(bool shown) override;

    void createAndInitDisplayElements();

private:
    void releaseWidget();

    AGPChildCount mLabelCount;
    AGPChildCount mTextCount;
    DisplayAPI::TextField* mTextField;
};
