// The header line(s) of a table: titles of the columns and their widths.
#include "AGPHeader.h"

#include <string_view>

#include "AGPCell.h"
#include "AGPIppTable.h"
#include "AGPUtils.h"

using namespace std::string_view_literals;

AGPHeader::AGPHeader() : mCellCount(0, 100), mLineCount(1), mColumnCount(1) {
    registerElement();
}

AGPHeader::~AGPHeader() {
    unregisterElement();
}

bool AGPHeader::addChild(AGPCommonBase& child) {
    if (child.getAGPObjectType() == AGPObjectTypeInfo::ti_Cell) {
        return addCountedChild(mCellCount, child);
    }
    return false;
}

bool AGPHeader::addAttribute(std::string& name, std::string& value) {
    if (name == "LineCount"sv) {
        mLineCount = parseAGPCount(value, 2);
        return true;
    }
    if (name == "ColumnCount"sv) {
        mColumnCount = parseAGPCount(value, 100);
        return true;
    }
    return false;
}

std::uint32_t AGPHeader::parseAGPCount(const std::string& text, int maximum) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number <= 0 || number > maximum) {
        return 1;
    }
    return static_cast<std::uint32_t>(number);
}

AGPIppTable* AGPHeader::table() {
    return mParent != nullptr && mParent->getAGPObjectType() == AGPObjectTypeInfo::ti_IppTable
               ? static_cast<AGPIppTable*>(mParent)
               : nullptr;
}

void AGPHeader::processElement() {
    AGPIppTable* owner = table();
    if (owner == nullptr) {
        return;
    }
    int column = 0;
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == AGPObjectTypeInfo::ti_Cell) {
            owner->setTitleColumnWidth(column++,
                                       static_cast<int>(static_cast<AGPCell*>(child)->getAGPWidth()));
        }
    }
}

void AGPHeader::setText(int line, std::string& text, unsigned long cellId) {
    AGPIppTable* owner = table();
    const int column = indexAmongChildrenOfType(AGPObjectTypeInfo::ti_Cell, cellId);
    if (owner != nullptr && column >= 0) {
        owner->setText(line, column, text);
    }
}

void AGPHeader::setImage(int line, int index, DisplayAPI::Image* image, unsigned long cellId) {
    AGPIppTable* owner = table();
    const int column = indexAmongChildrenOfType(AGPObjectTypeInfo::ti_Cell, cellId);
    if (owner != nullptr && column >= 0) {
        owner->setImage(line, column, index, image);
    }
}
