// A labelled picture in a form, shown as its alternative text while the picture is missing.
#include "AGPIppImageItem.h"

#include <string_view>

#include "AGPImage.h"

#include "display/ImageItem.h"

using namespace std::string_view_literals;

AGPIppImageItem::AGPIppImageItem()
    : mLabelCount(0, 1), mImageCount(0, 1), mAltTextCount(0, 1), mLayout(LAYOUT_OTHER), mImageItem(nullptr) {
    registerElement();
}

AGPIppImageItem::~AGPIppImageItem() {
    unregisterElement();
    releaseWidget();
}

bool AGPIppImageItem::addChild(AGPCommonBase& child) {
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

bool AGPIppImageItem::addAttribute(std::string& name, std::string& value) {
    if (name == "Layout"sv) {
        mLayout = parseAGPLayout(value);
        return true;
    }
    return false;
}

AGPIppImageItem::AGPLayout AGPIppImageItem::parseAGPLayout(const std::string& text) {
    static const char* const names[] = {"DEFAULT", "LEFT", "NEWLINE_AFTER", "NEWLINE_BEFORE", "RIGHT"};
    for (int i = 0; i < 5; ++i) {
        if (text == names[i]) {
            return static_cast<AGPLayout>(i + 1);
        }
    }
    return LAYOUT_OTHER;
}

void AGPIppImageItem::hideElement() {
    releaseWidget();
}

void AGPIppImageItem::releaseWidget() {
    if (mImageItem != nullptr && mImageItem->getForm() == nullptr) {
        delete mImageItem;
    }
    mImageItem = nullptr;
}

// The Image child's picture, fetched now when it is not there yet; without one the widget shows
// the alternative text, and a download that completes later arrives through imageDownloaded.
DisplayAPI::Image* AGPIppImageItem::takePicture() {
    auto* image = static_cast<AGPImage*>(getAGPImage());
    return image != nullptr ? image->takePicture(this) : nullptr;
}

void AGPIppImageItem::createAndInitDisplayElements() {
    releaseWidget();
    AGPCommonBase* label = getChildByType(AGPObjectTypeInfo::ti_Label);
    AGPCommonBase* altText = getChildByType(AGPObjectTypeInfo::ti_AltText);
    mImageItem =
        new DisplayAPI::ImageItem(label != nullptr ? label->getContent() : std::string(), takePicture(),
                                  altText != nullptr ? altText->getContent() : std::string());
    mImageItem->setOwnerId(mAGPId);
}

DisplayAPI::Item* AGPIppImageItem::getDisplayItem() {
    return mImageItem;
}

void AGPIppImageItem::setContextMenuArrowIcon(bool shown) {
    if (mImageItem != nullptr) {
        mImageItem->setContextMenuArrow(shown);
        mImageItem->setInformAppOnOk(shown);
    }
}

void AGPIppImageItem::imageDownloaded(unsigned long agpId) {
    auto* image = static_cast<AGPImage*>(getAGPImage());
    if (image == nullptr || image->getAGPObjectID() != agpId || image->getDisplayAPI_Image() == nullptr ||
        mImageItem == nullptr) {
        return;
    }
    mImageItem->setImage(image->getDisplayAPI_Image());
}
