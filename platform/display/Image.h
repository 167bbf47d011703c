// A picture shown by widgets: its bytes, format and size, read from the header without decoding.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace DisplayAPI {

// The content of a picture. Widgets share it, so a picture stays visible on a widget after its
// Image was deleted (elements delete their pictures before the widgets that show them).
struct ImageData {
    unsigned long id = 0; // unique per Image, for the host to tell pictures apart
    std::string kind;     // "png", "jpeg", "gif", "bmp", "resource" (a path the phone resolves), "broken"
    int width = 0;
    int height = 0;
    std::string path; // for pictures made from a path
    std::vector<unsigned char> bytes;
};

class Image {
public:
    // Copies the bytes. Unknown formats, truncated headers and a null or empty buffer give a
    // "broken" picture, which widgets show as such.
    Image(const char* data, int size);
    // A local file is read and recognised like downloaded bytes; a resource path (":/...") is
    // kept as a name; an empty or unreadable path gives a "broken" picture.
    explicit Image(const std::string& path);
    ~Image();
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    int getWidth() const { return mData->width; }
    int getHeight() const { return mData->height; }
    const std::string& getKind() const { return mData->kind; }
    bool isBroken() const { return mData->kind == "broken"; }
    std::shared_ptr<const ImageData> data() const { return mData; }

    // Fills kind, width and height from the signature and header of `bytes`.
    static void recognise(ImageData& image);

private:
    std::shared_ptr<ImageData> mData;
};

// {"id", "kind", "width", "height"} of a picture, or null for none (see Snapshot.cpp).
nlohmann::json describeImage(const std::shared_ptr<const ImageData>& image);

} // namespace DisplayAPI
