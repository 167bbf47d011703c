// One line of a table cell: its text and its pictures, placed into the row or header widget.
#pragma once

#include <cstdint>
#include <string>

#include "AGPCommonBase.h"
#include "AGPImageStateListenerIfc.h"

namespace DisplayAPI {
class Image;
}

// Lives and dies with its document tree on its queue's thread. A picture that arrives later is
// reported through imageDownloaded on the same queue's thread.
class AGPCellLine : public AGPCommonBase, public AGPImageStateListenerIfc {
public:
    enum AGPState : std::int32_t { NORMAL = 0, GRAY = 1 };

    AGPCellLine();
    AGPCellLine(const AGPCellLine&) = delete;
    AGPCellLine& operator=(const AGPCellLine&) = delete;
    ~AGPCellLine() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_CellLine; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return mCellTextCount.isCountValid() && mImageCount.isCountValid(); }
    void processElement() override;
    void reDisplayElement2ndRound() override;
    void imageDownloaded(unsigned long agpId) override;

    // The first Image child, or null.
    AGPCommonBase* getImage() { return getChildByType(AGPObjectTypeInfo::ti_Image); }
    // The widget picture of the first Image child, null while it has none.
    DisplayAPI::Image* getDisplayAPIImage();
    // Hands the text and the pictures that exist to the cell.
    void createAndInitDisplayElements2ndRound();

    AGPState getAGPState() const { return mState; }
    bool isActive() const { return mActive; }

private:
    AGPChildCount mCellTextCount;
    AGPChildCount mImageCount;
    AGPState mState;
    bool mActive;
};
