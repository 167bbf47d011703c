// A cell of a table's header or row: up to two lines, and the width of its column.
#pragma once

#include <cstdint>
#include <string>

#include "AGPCommonBase.h"

namespace DisplayAPI {
class Image;
}

// Lives and dies with its document tree on its queue's thread.
class AGPCell : public AGPCommonBase {
public:
    static constexpr std::uint32_t WIDTH_DEFAULT = 100;

    AGPCell();
    AGPCell(const AGPCell&) = delete;
    AGPCell& operator=(const AGPCell&) = delete;
    ~AGPCell() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_Cell; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return mCellLineCount.isCountValid(); }
    // Records the parent's kind: the header or a row gets the cell's texts.
    void initializeElement() override;

    // From the line `cellLineId`; forwarded to the header or row with the line's number.
    void setText(std::string& text, unsigned long cellLineId, bool active);
    void setImage(int index, DisplayAPI::Image* image, unsigned long cellLineId);

    std::uint32_t getAGPWidth() const { return mWidth; }
    void setAGPWidth(std::uint32_t width) { mWidth = width; }
    // A whole number of 0 or more, else the default.
    static std::uint32_t parseAGPWidth(const std::string& text);

private:
    AGPChildCount mCellLineCount;
    std::uint32_t mWidth;
    AGPObjectType mParentType;
};
