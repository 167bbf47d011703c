// A scrolling text line that a screen hands to its full-screen element.
#include "AGPIppTicker.h"

#include "display/Ticker.h"

AGPIppTicker::AGPIppTicker() : mTextCount(0, 1), mTicker(nullptr) {
    registerElement();
}

AGPIppTicker::~AGPIppTicker() {
    unregisterElement();
    deleteDisplayElements();
}

bool AGPIppTicker::addChild(AGPCommonBase& child) {
    if (child.getAGPObjectType() == AGPObjectTypeInfo::ti_Text) {
        return addCountedChild(mTextCount, child);
    }
    return false;
}

void AGPIppTicker::initializeElement() {
    createAndInitDisplayElements();
}

void AGPIppTicker::reDisplayElement() {
    createAndInitDisplayElements();
}

void AGPIppTicker::hideElement() {
    deleteDisplayElements();
}

// An empty text makes no ticker, so the screen shows no empty strip.
void AGPIppTicker::createAndInitDisplayElements() {
    deleteDisplayElements();
    AGPCommonBase* text = getChildByType(AGPObjectTypeInfo::ti_Text);
    const std::string content = text != nullptr ? text->getContent() : std::string();
    if (content.empty()) {
        return;
    }
    mTicker = new DisplayAPI::Ticker("");
    mTicker->setOwnerId(mAGPId);
    mTicker->setText(content);
}

void AGPIppTicker::deleteDisplayElements() {
    delete mTicker;
    mTicker = nullptr;
}
