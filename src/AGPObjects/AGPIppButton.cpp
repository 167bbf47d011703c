// A labelled picture in a form that sends its own key and value when the user presses Ok on it.
#include "AGPIppButton.h"

#include <string_view>

#include "AGPImage.h"
#include "AGPKey.h"
#include "AGPMessage.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPValue.h"
#include "display/ImageItem.h"

using namespace std::string_view_literals;

AGPIppButton::AGPIppButton()
    : mLabelCount(0, 1), mImageCount(0, 1), mAltTextCount(0, 1), mLayout(LAYOUT_OTHER), mType(TYPE_ANY),
      mKey(new AGPKey("null")), mKeyGiven(false), mValue(new AGPValue("")), mValueGiven(false),
      mImageItem(nullptr) {
    registerElement();
}

AGPIppButton::~AGPIppButton() {
    unregisterElement();
    releaseWidget();
    delete mKey;
    delete mValue;
}

bool AGPIppButton::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Label:
        return addCountedChild(mLabelCount, child);
    case AGPObjectTypeInfo::ti_Image:
        return addCountedChild(mImageCount, child);
    case AGPObjectTypeInfo::ti_AltText:
        return addCountedChild(mAltTextCount, child);
    default:
        return false;
    }
}

bool AGPIppButton::addAttribute(std::string& name, std::string& value) {
    if (name == "Key"sv) {
        delete mKey;
        mKey = AGPKey::parseAGPKey(value);
        mKeyGiven = true;
        return !AGPObjectPool::isPooled(*mKey, AGPObjectPool::getAGPKey_PARSE_FAILED());
    }
    if (name == "Value"sv) {
        delete mValue;
        mValue = AGPValue::parseAGPValue(value);
        mValueGiven = true;
        return !AGPObjectPool::isPooled(*mValue, AGPObjectPool::getAGPValue_PARSE_FAILED());
    }
    if (name == "Layout"sv) {
        mLayout = parseAGPLayout(value);
        return true;
    }
    if (name == "Type"sv) {
        mType = parseAGPType(value);
        return true;
    }
    return false;
}

AGPIppButton::AGPLayout AGPIppButton::parseAGPLayout(const std::string& text) {
    if (text == "CENTER") {
        return LAYOUT_CENTER;
    }
    static const char* const names[] = {"LEFT", "NEWLINE_AFTER", "NEWLINE_BEFORE", "RIGHT"};
    for (int i = 0; i < 4; ++i) {
        if (text == names[i]) {
            return static_cast<AGPLayout>(i + 2);
        }
    }
    return LAYOUT_OTHER;
}

bool AGPIppButton::isValid() {
    return mKeyGiven && mValueGiven && mLabelCount.isCountValid() && mImageCount.isCountValid() &&
           mAltTextCount.isCountValid();
}

void AGPIppButton::hideElement() {
    releaseWidget();
}

void AGPIppButton::releaseWidget() {
    if (mImageItem != nullptr && mImageItem->getForm() == nullptr) {
        delete mImageItem;
    }
    mImageItem = nullptr;
}

// The Image child's picture, fetched now when it is not there yet; without one the widget shows
// the alternative text, and a download that completes later arrives through imageDownloaded.
DisplayAPI::Image* AGPIppButton::takePicture() {
    auto* image = static_cast<AGPImage*>(getAGPImage());
    return image != nullptr ? image->takePicture(this) : nullptr;
}

void AGPIppButton::createAndInitDisplayElements() {
    releaseWidget();
    AGPCommonBase* label = getChildByType(AGPObjectTypeInfo::ti_Label);
    AGPCommonBase* altText = getChildByType(AGPObjectTypeInfo::ti_AltText);
    mImageItem =
        new DisplayAPI::ImageItem(label != nullptr ? label->getContent() : std::string(), takePicture(),
                                  altText != nullptr ? altText->getContent() : std::string());
    mImageItem->setOwnerId(mAGPId);
    // Ok on the button reaches the form, which sends the button's pair.
    mImageItem->setInformAppOnOk(true);
}

// A change reported on the button is the form's business: it goes to the parent, on this queue.
void AGPIppButton::processMessage(AGPMessage& message) {
    if (message.type != AGPMessage::Command_Item_state_changed || mParent == nullptr) {
        return;
    }
    message.agpId = mParent->getAGPObjectID();
    AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler();
    if (queues != nullptr) {
        queues->addToMessageQueue(message, mQueueID);
    }
}

DisplayAPI::Item* AGPIppButton::getDisplayItem() {
    return mImageItem;
}

void AGPIppButton::setContextMenuArrowIcon(bool shown) {
    if (mImageItem != nullptr) {
        mImageItem->setContextMenuArrow(shown);
    }
}

void AGPIppButton::gatherKeyValues(std::multimap<std::string, std::string>& keyValues) {
    keyValues.emplace(mKey->getValueText(), mValue->getValueText());
}

void AGPIppButton::imageDownloaded(unsigned long agpId) {
    auto* image = static_cast<AGPImage*>(getAGPImage());
    if (image == nullptr || image->getAGPObjectID() != agpId || image->getDisplayAPI_Image() == nullptr ||
        mImageItem == nullptr) {
        return;
    }
    mImageItem->setImage(image->getDisplayAPI_Image());
}
