// A form item showing a picture with a label, or its alternative text without one; also buttons.
#pragma once

#include <memory>
#include <string>

#include "display/Item.h"

namespace DisplayAPI {

class Image;
struct ImageData;

class ImageItem : public Item {
public:
    // `image` may be null; its content is shared, so the Image may be deleted first.
    ImageItem(const std::string& label, Image* image, const std::string& altText);
    ~ImageItem() override;

    void setImage(Image* image);
    void setAltText(const std::string& altText);
    void setContextMenuArrow(bool shown);

    const char* kind() const override { return "imageItem"; }

protected:
    void describeContent(nlohmann::json& out) const override;

private:
    std::shared_ptr<const ImageData> mImage;
    std::string mAltText;
    bool mArrow = false;
};

} // namespace DisplayAPI
