// Pictures: format recognition by signature and the size from the header.
#include "display/Image.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

namespace DisplayAPI {

namespace {

// Larger files are not pictures the phone would show; reading them would only cost memory.
constexpr std::size_t maximumFileSize = 4 * 1024 * 1024;

unsigned long nextImageId() {
    static std::atomic<unsigned long> next{1};
    return next++;
}

unsigned bigEndian16(const std::vector<unsigned char>& b, std::size_t at) {
    return (unsigned(b[at]) << 8) | b[at + 1];
}

unsigned littleEndian16(const std::vector<unsigned char>& b, std::size_t at) {
    return unsigned(b[at]) | (unsigned(b[at + 1]) << 8);
}

long bigEndian32(const std::vector<unsigned char>& b, std::size_t at) {
    return (long(b[at]) << 24) | (long(b[at + 1]) << 16) | (long(b[at + 2]) << 8) | long(b[at + 3]);
}

long littleEndian32Signed(const std::vector<unsigned char>& b, std::size_t at) {
    const std::uint32_t v = std::uint32_t(b[at]) | (std::uint32_t(b[at + 1]) << 8) |
                            (std::uint32_t(b[at + 2]) << 16) | (std::uint32_t(b[at + 3]) << 24);
    return static_cast<std::int32_t>(v);
}

bool startsWith(const std::vector<unsigned char>& b, const char* signature, std::size_t length) {
    return b.size() >= length && std::memcmp(b.data(), signature, length) == 0;
}

bool readPng(ImageData& image) {
    const auto& b = image.bytes;
    if (!startsWith(b, "\x89PNG\r\n\x1a\n", 8) || b.size() < 24 || std::memcmp(&b[12], "IHDR", 4) != 0) {
        return false;
    }
    image.kind = "png";
    image.width = static_cast<int>(bigEndian32(b, 16));
    image.height = static_cast<int>(bigEndian32(b, 20));
    return true;
}

bool readGif(ImageData& image) {
    const auto& b = image.bytes;
    if (!(startsWith(b, "GIF87a", 6) || startsWith(b, "GIF89a", 6)) || b.size() < 10) {
        return false;
    }
    image.kind = "gif";
    image.width = static_cast<int>(littleEndian16(b, 6));
    image.height = static_cast<int>(littleEndian16(b, 8));
    return true;
}

bool readBmp(ImageData& image) {
    const auto& b = image.bytes;
    if (!startsWith(b, "BM", 2) || b.size() < 26) {
        return false;
    }
    image.kind = "bmp";
    image.width = static_cast<int>(std::labs(littleEndian32Signed(b, 18)));
    // A negative height marks a top-down bitmap; the picture is as tall either way.
    image.height = static_cast<int>(std::labs(littleEndian32Signed(b, 22)));
    return true;
}

bool isStartOfFrame(unsigned char marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// Walks the JPEG segments up to the frame header, which holds the size.
bool readJpeg(ImageData& image) {
    const auto& b = image.bytes;
    if (!startsWith(b, "\xff\xd8", 2)) {
        return false;
    }
    std::size_t at = 2;
    while (at + 4 <= b.size()) {
        if (b[at] != 0xFF) {
            return false;
        }
        const unsigned char marker = b[at + 1];
        if (marker == 0xFF) {
            ++at; // fill byte
            continue;
        }
        if (marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {
            at += 2; // markers without a length
            continue;
        }
        const unsigned length = bigEndian16(b, at + 2);
        if (length < 2) {
            return false;
        }
        if (isStartOfFrame(marker)) {
            if (at + 9 > b.size()) {
                return false;
            }
            image.kind = "jpeg";
            image.height = static_cast<int>(bigEndian16(b, at + 5));
            image.width = static_cast<int>(bigEndian16(b, at + 7));
            return true;
        }
        at += 2 + length;
    }
    return false;
}

bool readFile(const std::string& path, std::vector<unsigned char>& bytes) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return false;
    }
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    if (size < 0 || static_cast<std::size_t>(size) > maximumFileSize) {
        return false;
    }
    in.seekg(0, std::ios::beg);
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return true;
}

} // namespace

void Image::recognise(ImageData& image) {
    if (readPng(image) || readGif(image) || readJpeg(image) || readBmp(image)) {
        if (image.width > 0 && image.height > 0) {
            return;
        }
    }
    image.kind = "broken";
    image.width = 0;
    image.height = 0;
}

Image::Image(const char* data, int size) : mData(std::make_shared<ImageData>()) {
    mData->id = nextImageId();
    if (data != nullptr && size > 0) {
        mData->bytes.assign(data, data + size);
    }
    recognise(*mData);
}

Image::Image(const std::string& path) : mData(std::make_shared<ImageData>()) {
    mData->id = nextImageId();
    mData->path = path;
    if (path.rfind(":/", 0) == 0) {
        mData->kind = "resource";
        return;
    }
    const std::string file = path.rfind("file:", 0) == 0 ? path.substr(5) : path;
    if (file.empty() || !readFile(file, mData->bytes)) {
        mData->kind = "broken";
        return;
    }
    recognise(*mData);
}

Image::~Image() = default;

} // namespace DisplayAPI
