// A labelled picture in a form, shown as its alternative text while the picture is missing.
#pragma once

#include <cstdint>

#include "AGPCommonBase.h"
#include "AGPDisplayItemIfc.h"
#include "AGPImageStateListenerIfc.h"

namespace DisplayAPI {
class Image;
class ImageItem;
} // namespace DisplayAPI

// The widget lives from initialization (or redisplay) to hiding. Once appended it belongs to
// the form widget; one that never entered a form is deleted here. imageDownloaded runs on the
// item's queue thread, like every other change of the widget.
class AGPIppImageItem : public AGPCommonBase, public AGPDisplayItemIfc, public AGPImageStateListenerIfc {
public:
    enum AGPLayout : std::int32_t {
        LAYOUT_OTHER = 0,
        LAYOUT_DEFAULT = 1,
        LAYOUT_LEFT = 2,
        LAYOUT_NEWLINE_AFTER = 3,
        LAYOUT_NEWLINE_BEFORE = 4,
        LAYOUT_RIGHT = 5
    };

    AGPIppImageItem();
    AGPIppImageItem(const AGPIppImageItem&) = delete;
    AGPIppImageItem& operator=(const AGPIppImageItem&) = delete;
    ~AGPIppImageItem() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppImageItem; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override {
        return mLabelCount.isCountValid() && mImageCount.isCountValid() && mAltTextCount.isCountValid();
    }
    void initializeElement() override { createAndInitDisplayElements(); }
    void reDisplayElement() override { createAndInitDisplayElements(); }
    void hideElement() override;

    DisplayAPI::Item* getDisplayItem() override;
    void setContextMenuArrowIcon(bool shown) override;
    void imageDownloaded(unsigned long agpId) override;

    AGPLayout getAGPLayout() const { return mLayout; }
    static AGPLayout parseAGPLayout(const std::string& text);
    AGPCommonBase* getAGPImage() { return getChildByType(AGPObjectTypeInfo::ti_Image); }

    void createAndInitDisplayElements();

private:
    void releaseWidget();
    // The picture of the Image child, or null while there is none.
    DisplayAPI::Image* takePicture();

    AGPChildCount mLabelCount;
    AGPChildCount mImageCount;
    AGPChildCount mAltTextCount;
    AGPLayout mLayout;
    DisplayAPI::ImageItem* mImageItem;
};
