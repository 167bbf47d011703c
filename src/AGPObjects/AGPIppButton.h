// A labelled picture in a form that sends its own key and value when the user presses Ok on it.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "AGPCommonBase.h"
#include "AGPDisplayItemIfc.h"
#include "AGPImageStateListenerIfc.h"
#include "AGPKeyValueProviderIfc.h"

class AGPKey;
class AGPValue;

namespace DisplayAPI {
class Image;
class ImageItem;
} // namespace DisplayAPI

// The widget lives from initialization (or redisplay) to hiding. Once appended it belongs to
// the form widget; one that never entered a form is deleted here. The key and value belong to
// the button and live as long as it does.
class AGPIppButton : public AGPCommonBase,
                     public AGPDisplayItemIfc,
                     public AGPKeyValueProviderIfc,
                     public AGPImageStateListenerIfc {
public:
    enum AGPLayout : std::int32_t {
        LAYOUT_CENTER = 0,
        LAYOUT_OTHER = 1,
        LAYOUT_LEFT = 2,
        LAYOUT_NEWLINE_AFTER = 3,
        LAYOUT_NEWLINE_BEFORE = 4,
        LAYOUT_RIGHT = 5
    };
    enum AGPType : std::int32_t { TYPE_ANY = 0 };

    AGPIppButton();
    AGPIppButton(const AGPIppButton&) = delete;
    AGPIppButton& operator=(const AGPIppButton&) = delete;
    ~AGPIppButton() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppButton; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override;
    void initializeElement() override { createAndInitDisplayElements(); }
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override { createAndInitDisplayElements(); }

    DisplayAPI::Item* getDisplayItem() override;
    void setContextMenuArrowIcon(bool shown) override;
    void gatherKeyValues(std::multimap<std::string, std::string>& keyValues) override;
    void imageDownloaded(unsigned long agpId) override;

    AGPCommonBase* getAGPImage() { return getChildByType(AGPObjectTypeInfo::ti_Image); }
    AGPLayout getAGPLayout() const { return mLayout; }
    AGPType getAGPType() const { return mType; }
    AGPKey* getAGPKey() const { return mKey; }
    AGPValue* getAGPValue() const { return mValue; }
    static AGPLayout parseAGPLayout(const std::string& text);
    static AGPType parseAGPType(const std::string&) { return TYPE_ANY; }

    void createAndInitDisplayElements();

private:
    void releaseWidget();
    // The picture of the Image child, or null while there is none.
    DisplayAPI::Image* takePicture();

    AGPChildCount mLabelCount;
    AGPChildCount mImageCount;
    AGPChildCount mAltTextCount;
    AGPLayout mLayout;
    AGPType mType;
    AGPKey* mKey;
    bool mKeyGiven;
    AGPValue* mValue;
    bool mValueGiven;
    DisplayAPI::ImageItem* mImageItem;
};
