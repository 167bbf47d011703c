// One line of a table cell: its text and its pictures, placed into the row or header widget.
#include "AGPCellLine.h"

#include <string_view>

#include "AGPCell.h"
#include "AGPImage.h"

using namespace std::string_view_literals;

namespace {

// The widget picture of an Image element, null while it has none. A listener hears of a
// picture still on its way through imageDownloaded, once the element's download ends.
DisplayAPI::Image* pictureOf(AGPCommonBase* element, AGPImageStateListenerIfc* listener) {
    auto* image = static_cast<AGPImage*>(element);
    if (listener != nullptr) {
        image->setImageStateListener(listener);
    }
    return image->getDisplayAPI_Image();
}

} // namespace

AGPCellLine::AGPCellLine() : mCellTextCount(0, 1), mImageCount(0, -1), mState(NORMAL), mActive(true) {
    registerElement();
}

AGPCellLine::~AGPCellLine() {
    unregisterElement();
}

bool AGPCellLine::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_CellText:
        return addCountedChild(mCellTextCount, child);
    case AGPObjectTypeInfo::ti_Image:
        return addCountedChild(mImageCount, child);
    default:
        return false;
    }
}

bool AGPCellLine::addAttribute(std::string& name, std::string& value) {
    if (name == "State"sv) {
        mState = value == "GRAY" ? GRAY : NORMAL;
        mActive = mState != GRAY;
        return true;
    }
    return false;
}

void AGPCellLine::processElement() {
    createAndInitDisplayElements2ndRound();
}

void AGPCellLine::reDisplayElement2ndRound() {
    createAndInitDisplayElements2ndRound();
}

DisplayAPI::Image* AGPCellLine::getDisplayAPIImage() {
    AGPCommonBase* image = getImage();
    return image != nullptr ? pictureOf(image, nullptr) : nullptr;
}

void AGPCellLine::createAndInitDisplayElements2ndRound() {
    AGPCommonBase* parent = getParent();
    if (parent == nullptr || parent->getAGPObjectType() != AGPObjectTypeInfo::ti_Cell) {
        return;
    }
    auto* cell = static_cast<AGPCell*>(parent);
    if (AGPCommonBase* text = getChildByType(AGPObjectTypeInfo::ti_CellText)) {
        std::string content = text->getContent();
        cell->setText(content, mAGPId, mActive);
    }
    int index = 0;
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() != AGPObjectTypeInfo::ti_Image) {
            continue;
        }
        if (DisplayAPI::Image* picture = pictureOf(child, this)) {
            cell->setImage(index, picture, mAGPId);
        }
        ++index;
    }
}

void AGPCellLine::imageDownloaded(unsigned long agpId) {
    AGPCommonBase* parent = getParent();
    if (parent == nullptr || parent->getAGPObjectType() != AGPObjectTypeInfo::ti_Cell) {
        return;
    }
    int index = 0;
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() != AGPObjectTypeInfo::ti_Image) {
            continue;
        }
        if (child->getAGPObjectID() == agpId) {
            if (DisplayAPI::Image* picture = pictureOf(child, nullptr)) {
                static_cast<AGPCell*>(parent)->setImage(index, picture, mAGPId);
            }
            return;
        }
        ++index;
    }
}
