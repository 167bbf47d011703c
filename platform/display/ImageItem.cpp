// Image items.
#include "display/ImageItem.h"

#include <nlohmann/json.hpp>

#include "display/Image.h"

namespace DisplayAPI {

ImageItem::ImageItem(const std::string& label, Image* image, const std::string& altText)
    : mImage(image != nullptr ? image->data() : nullptr), mAltText(altText) {
    setLabel(label);
}

ImageItem::~ImageItem() {
    retire();
}

void ImageItem::setImage(Image* image) {
    core::Lock lock(core::mutex());
    mImage = image != nullptr ? image->data() : nullptr;
    core::changedLocked();
}

void ImageItem::setAltText(const std::string& altText) {
    core::Lock lock(core::mutex());
    mAltText = altText;
    core::changedLocked();
}

void ImageItem::setContextMenuArrow(bool shown) {
    core::Lock lock(core::mutex());
    mArrow = shown;
    core::changedLocked();
}

void ImageItem::describeContent(nlohmann::json& out) const {
    out["image"] = describeImage(mImage);
    out["altText"] = mAltText;
    out["arrow"] = mArrow;
    out["informsOnOk"] = isInformAppOnOk();
}

} // namespace DisplayAPI
