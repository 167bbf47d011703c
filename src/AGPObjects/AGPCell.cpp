// A cell of a table's header or row: up to two lines, and the width of its column.
#include "AGPCell.h"

#include <string_view>

#include "AGPHeader.h"
#include "AGPRow.h"
#include "AGPUtils.h"

using namespace std::string_view_literals;

AGPCell::AGPCell() : mCellLineCount(0, 2), mWidth(WIDTH_DEFAULT), mParentType(AGPObjectTypeInfo::ti_NoType) {
    registerElement();
}

AGPCell::~AGPCell() {
    unregisterElement();
}

bool AGPCell::addChild(AGPCommonBase& child) {
    if (child.getAGPObjectType() == AGPObjectTypeInfo::ti_CellLine) {
        return addCountedChild(mCellLineCount, child);
    }
    return false;
}

bool AGPCell::addAttribute(std::string& name, std::string& value) {
    if (name == "Width"sv) {
        mWidth = parseAGPWidth(value);
        return true;
    }
    return false;
}

std::uint32_t AGPCell::parseAGPWidth(const std::string& text) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        return WIDTH_DEFAULT;
    }
    return static_cast<std::uint32_t>(number);
}

void AGPCell::initializeElement() {
    mParentType = mParent != nullptr ? mParent->getAGPObjectType() : AGPObjectTypeInfo::ti_NoType;
}

void AGPCell::setText(std::string& text, unsigned long cellLineId, bool active) {
    const int line = indexAmongChildrenOfType(AGPObjectTypeInfo::ti_CellLine, cellLineId);
    if (line < 0 || mParent == nullptr) {
        return;
    }
    if (mParentType == AGPObjectTypeInfo::ti_Row) {
        static_cast<AGPRow*>(mParent)->setText(line, text, mAGPId, active);
    } else if (mParentType == AGPObjectTypeInfo::ti_Header) {
        static_cast<AGPHeader*>(mParent)->setText(line, text, mAGPId);
    }
}

void AGPCell::setImage(int index, DisplayAPI::Image* image, unsigned long cellLineId) {
    const int line = indexAmongChildrenOfType(AGPObjectTypeInfo::ti_CellLine, cellLineId);
    if (line < 0 || mParent == nullptr) {
        return;
    }
    if (mParentType == AGPObjectTypeInfo::ti_Row) {
        static_cast<AGPRow*>(mParent)->setImage(line, index, image, mAGPId);
    } else if (mParentType == AGPObjectTypeInfo::ti_Header) {
        static_cast<AGPHeader*>(mParent)->setImage(line, index, image, mAGPId);
    }
}
