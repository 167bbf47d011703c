// The header line(s) of a table: titles of the columns and their widths.
#pragma once

#include <cstdint>
#include <string>

#include "AGPCommonBase.h"

namespace DisplayAPI {
class Image;
}

// Lives and dies with its document tree on its queue's thread.
class AGPHeader : public AGPCommonBase {
public:
    AGPHeader();
    AGPHeader(const AGPHeader&) = delete;
    AGPHeader& operator=(const AGPHeader&) = delete;
    ~AGPHeader() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_Header; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return mCellCount.isCountValid(); }
    // Gives the table the width of each column.
    void processElement() override;

    void setText(int line, std::string& text, unsigned long cellId);
    void setImage(int line, int index, DisplayAPI::Image* image, unsigned long cellId);

    std::uint32_t getAGPLineCount() const { return mLineCount; }
    std::uint32_t getAGPColumnCount() const { return mColumnCount; }
    // 1 up to `maximum`, else 1.
    static std::uint32_t parseAGPCount(const std::string& text, int maximum);

private:
    // The table, when it is the parent.
    class AGPIppTable* table();

    AGPChildCount mCellCount;
    std::uint32_t mLineCount;
    std::uint32_t mColumnCount;
};
