// A scrolling text line that a screen hands to its full-screen element.
#pragma once

#include "AGPCommonBase.h"

namespace DisplayAPI {
class Ticker;
}

// The ticker widget lives from initialization (or redisplay) to hiding and belongs to this
// element; the widgets that show it keep only a weak reference, so deleting it on a queue thread
// takes it off the screen safely.
class AGPIppTicker : public AGPCommonBase {
public:
    AGPIppTicker();
    AGPIppTicker(const AGPIppTicker&) = delete;
    AGPIppTicker& operator=(const AGPIppTicker&) = delete;
    ~AGPIppTicker() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppTicker; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& /*name*/, std::string& /*value*/) override { return false; }
    bool isValid() override { return mTextCount.isCountValid(); }
    void initializeElement() override;
    void reDisplayElement() override;
    void hideElement() override;

    // Null while hidden or when the text is empty.
    DisplayAPI::Ticker* getTicker() const { return mTicker; }

private:
    void createAndInitDisplayElements();
    void deleteDisplayElements();

    AGPChildCount mTextCount;
    DisplayAPI::Ticker* mTicker;
};
