// A read-only labelled text in a form; it sends nothing.
#include "AGPIppStringItem.h"

#include "display/TextField.h"

AGPIppStringItem::AGPIppStringItem() : mLabelCount(0, 1), mTextCount(0, 1), mTextField(nullptr) {
    registerElement();
}

AGPIppStringItem::~AGPIppStringItem() {
    unregisterElement();
    releaseWidget();
}

bool AGPIppStringItem::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Label:
        return addCountedChild(mLabelCount, child);
    case AGPObjectTypeInfo::ti_Text:
        return addCountedChild(mTextCount, child);
    default:
        return false;
    }
}

void AGPIppStringItem::hideElement() {
    releaseWidget();
}

// A widget in a form goes with the form widget.
void AGPIppStringItem::releaseWidget() {
    if (mTextField != nullptr && mTextField->getForm() == nullptr) {
        delete mTextField;
    }
    mTextField = nullptr;
}

void AGPIppStringItem::createAndInitDisplayElements() {
    releaseWidget();
    AGPCommonBase* label = getChildByType(AGPObjectTypeInfo::ti_Label);
    AGPCommonBase* text = getChildByType(AGPObjectTypeInfo::ti_Text);
    mTextField = new DisplayAPI::TextField(nullptr, 0, nullptr, DisplayAPI::TextField::ANY, false);
    mTextField->setLabel(label != nullptr ? label->getContent() : std::string());
    mTextField->setString(text != nullptr ? text->getContent() : std::string());
    mTextField->setReadOnlyMode(true);
    mTextField->setOwnerId(mAGPId);
}

DisplayAPI::Item* AGPIppStringItem::getDisplayItem() {
    return mTextField;
}

void AGPIppStringItem::setContextMenuArrowIcon(bool shown) {
    if (mTextField != nullptr) {
        mTextField->setContextMenuArrowIcon(shown);
        mTextField->setInformAppOnOk(shown);
    }
}
