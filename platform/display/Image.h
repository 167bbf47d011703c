// A picture shown by widgets: its bytes, format and size, checked by decoding within a bound.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace DisplayAPI {

// The content of a picture. Widgets share it, so a picture stays visible on a widget after its
// Image was deleted (elements delete their pictures before the widgets that show them).
struct ImageData {
    unsigned long id = 0; // unique per Image, for the host to tell pictures apart and fetch them
    std::string kind;     // "png", "jpeg", "gif", "bmp" or "broken"
    int width = 0;
    int height = 0;
    std::string path;    // for pictures made from a path: the path as the application named it
    std::string problem; // for a broken picture: what is wrong with it
    std::vector<unsigned char> bytes;
};

class Image {
public:
    // Pictures larger than this, in either direction, are not decoded (a header may claim any size).
    static constexpr int mMaxSide = 4096;
    static constexpr long mMaxPixels = 4L * 1024 * 1024;
    // Files larger than this are not read.
    static constexpr long mMaxFileSize = 512 * 1024;

    // Copies the bytes. A picture that does not decode (unknown format, truncated, too large, null
    // or empty buffer) is "broken"; widgets leave a broken picture out.
    Image(const char* data, int size);
    // A file of the phone: a path inside the phone's files folder, or a skin path (":/images/SKIN/
    // FOLDER/NAME") read from the skin folder. A path that leads elsewhere, is no regular file or
    // holds no picture gives a "broken" picture.
    explicit Image(const std::string& path);
    ~Image();
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    int getWidth() const { return mData->width; }
    int getHeight() const { return mData->height; }
    const std::string& getKind() const { return mData->kind; }
    bool isBroken() const { return mData->kind == "broken"; }
    std::shared_ptr<const ImageData> data() const { return mData; }

    // Decodes `image.bytes` to fill kind, width and height, or marks it broken with the reason.
    static void recognise(ImageData& image);

    // Where the phone keeps its files and its skin pictures; empty folders give no pictures.
    // Process-wide: the phone has one file system.
    static void setFolders(const std::string& filesFolder, const std::string& skinFolder);
    // The picture with `id` while any widget or Image still holds it, else null.
    static std::shared_ptr<const ImageData> find(unsigned long id);

private:
    std::shared_ptr<ImageData> mData;
};

// {"id", "kind", "width", "height", "url" or "problem", "path", "name"} of a picture, or null for
// none (see Snapshot.cpp).
nlohmann::json describeImage(const std::shared_ptr<const ImageData>& image);

} // namespace DisplayAPI
