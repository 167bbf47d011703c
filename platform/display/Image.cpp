// Pictures: decoding checked within a bound, phone files and skin pictures, lookup by id.
#include "display/Image.h"

#include <stb_image.h>

#include <array>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <mutex>
#include <system_error>

namespace DisplayAPI {

namespace {

namespace fs = std::filesystem;

const char* const kSkinPrefix = ":/images/";

struct Registry {
    std::mutex mutex;
    std::string filesFolder;
    std::string skinFolder;
    std::map<unsigned long, std::weak_ptr<ImageData>> pictures;
    std::size_t sweptSize = 0;
};

Registry& registry() {
    static Registry instance;
    return instance;
}

unsigned long nextImageId() {
    static std::atomic<unsigned long> next{1};
    return next++;
}

// Dropped pictures leave expired entries; they are swept whenever the map has doubled since the
// last sweep, so it stays within twice the pictures alive at little cost per picture.
void remember(const std::shared_ptr<ImageData>& image) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    if (r.pictures.size() >= 2 * r.sweptSize + 16) {
        for (auto it = r.pictures.begin(); it != r.pictures.end();) {
            it = it->second.expired() ? r.pictures.erase(it) : std::next(it);
        }
        r.sweptSize = r.pictures.size();
    }
    r.pictures[image->id] = image;
}

// The pictures decoded last. A list whose options all name one cached picture makes a widget
// picture of the same bytes for every option: the decoder checks those bytes once, and the
// others take its verdict. Only pictures still alive are asked, so nothing is kept for this.
struct RecentPictures {
    std::mutex mutex;
    std::array<std::weak_ptr<const ImageData>, 16> decoded;
    std::size_t next = 0;
};

RecentPictures& recentPictures() {
    static RecentPictures instance;
    return instance;
}

bool takeEarlierVerdict(ImageData& image) {
    RecentPictures& recent = recentPictures();
    std::lock_guard<std::mutex> lock(recent.mutex);
    for (const auto& entry : recent.decoded) {
        const std::shared_ptr<const ImageData> earlier = entry.lock();
        if (earlier != nullptr && earlier->bytes == image.bytes) {
            image.kind = earlier->kind;
            image.width = earlier->width;
            image.height = earlier->height;
            image.problem = earlier->problem;
            return true;
        }
    }
    return false;
}

void noteVerdict(const std::shared_ptr<const ImageData>& image) {
    RecentPictures& recent = recentPictures();
    std::lock_guard<std::mutex> lock(recent.mutex);
    recent.decoded[recent.next++ % recent.decoded.size()] = image;
}

bool startsWith(const std::vector<unsigned char>& b, const char* signature, std::size_t length) {
    return b.size() >= length && std::memcmp(b.data(), signature, length) == 0;
}

// The format named by the signature; the decoder decides whether the rest holds up.
std::string formatOf(const std::vector<unsigned char>& b) {
    if (startsWith(b, "\x89PNG\r\n\x1a\n", 8)) {
        return "png";
    }
    if (startsWith(b, "\xff\xd8\xff", 3)) {
        return "jpeg";
    }
    if (startsWith(b, "GIF87a", 6) || startsWith(b, "GIF89a", 6)) {
        return "gif";
    }
    if (startsWith(b, "BM", 2)) {
        return "bmp";
    }
    return std::string();
}

void markBroken(ImageData& image, const std::string& problem) {
    image.kind = "broken";
    image.width = 0;
    image.height = 0;
    image.problem = problem;
}

// `relative` inside `folder`, after following links; empty when it leads outside.
std::string confinedPath(const std::string& folder, const std::string& relative, std::string& problem) {
    if (folder.empty()) {
        problem = "the phone has no folder for these pictures";
        return std::string();
    }
    std::error_code error;
    const fs::path root = fs::canonical(folder, error);
    if (error) {
        problem = "the folder " + folder + " cannot be read";
        return std::string();
    }
    const fs::path target = fs::weakly_canonical(root / fs::path(relative).relative_path(), error);
    if (error) {
        problem = "no file " + relative;
        return std::string();
    }
    const std::string rootText = root.string() + "/";
    if (target.string().compare(0, rootText.size(), rootText) != 0) {
        problem = relative + " lies outside the folder";
        return std::string();
    }
    return target.string();
}

// Only regular files of a bounded size: devices and pipes would never end.
bool readFile(const std::string& file, std::vector<unsigned char>& bytes, std::string& problem) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (error || !fs::is_regular_file(status)) {
        problem = "no regular file " + file;
        return false;
    }
    const auto size = fs::file_size(file, error);
    if (error || size > static_cast<std::uintmax_t>(Image::mMaxFileSize)) {
        problem = "the file " + file + " is larger than " + std::to_string(Image::mMaxFileSize) + " bytes";
        return false;
    }
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        problem = "the file " + file + " cannot be read";
        return false;
    }
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (bytes.size() > static_cast<std::size_t>(Image::mMaxFileSize)) {
        problem = "the file " + file + " grew while it was read";
        return false;
    }
    return true;
}

// ":/images/SKIN/FOLDER/NAME": every skin uses the one icon set of the skin folder.
std::string skinFile(const std::string& path, const std::string& skinFolder, std::string& problem) {
    const std::string rest = path.substr(std::strlen(kSkinPrefix));
    const std::size_t slash = rest.find('/');
    if (slash == std::string::npos || slash + 1 >= rest.size()) {
        problem = "no skin picture " + path;
        return std::string();
    }
    return confinedPath(skinFolder, rest.substr(slash + 1), problem);
}

} // namespace

void Image::recognise(ImageData& image) {
    const std::string format = formatOf(image.bytes);
    if (format.empty()) {
        markBroken(image, image.bytes.empty() ? "no bytes" : "not a PNG, JPEG, GIF or BMP picture");
        return;
    }
    if (image.bytes.size() > static_cast<std::size_t>(INT32_MAX)) {
        markBroken(image, "too many bytes");
        return;
    }
    const auto* bytes = image.bytes.data();
    const int length = static_cast<int>(image.bytes.size());
    int width = 0;
    int height = 0;
    int channels = 0;
    if (stbi_info_from_memory(bytes, length, &width, &height, &channels) == 0) {
        markBroken(image, std::string("unreadable ") + format + " header");
        return;
    }
    // The header's claim is checked before any pixel memory is taken.
    if (width <= 0 || height <= 0 || width > mMaxSide || height > mMaxSide ||
        static_cast<long>(width) * height > mMaxPixels) {
        markBroken(image, "a picture of " + std::to_string(width) + "x" + std::to_string(height) +
                              " pixels is too large");
        return;
    }
    unsigned char* pixels = stbi_load_from_memory(bytes, length, &width, &height, &channels, 0);
    if (pixels == nullptr) {
        const char* reason = stbi_failure_reason();
        markBroken(image, std::string("the ") + format + " picture does not decode" +
                              (reason != nullptr ? std::string(": ") + reason : std::string()));
        return;
    }
    stbi_image_free(pixels);
    image.kind = format;
    image.width = width;
    image.height = height;
    image.problem.clear();
}

Image::Image(const char* data, int size) : mData(std::make_shared<ImageData>()) {
    mData->id = nextImageId();
    if (data != nullptr && size > 0) {
        mData->bytes.assign(data, data + size);
    }
    if (!takeEarlierVerdict(*mData)) {
        recognise(*mData);
        noteVerdict(mData);
    }
    remember(mData);
}

Image::Image(const std::string& path) : mData(std::make_shared<ImageData>()) {
    mData->id = nextImageId();
    mData->path = path;
    std::string filesFolder;
    std::string skinFolder;
    {
        Registry& r = registry();
        std::lock_guard<std::mutex> lock(r.mutex);
        filesFolder = r.filesFolder;
        skinFolder = r.skinFolder;
    }
    std::string problem;
    const std::string file = path.empty()                      ? std::string()
                             : path.rfind(kSkinPrefix, 0) == 0 ? skinFile(path, skinFolder, problem)
                                                               : confinedPath(filesFolder, path, problem);
    if (path.empty()) {
        problem = "no file name";
    }
    if (file.empty() || !readFile(file, mData->bytes, problem)) {
        markBroken(*mData, problem);
    } else if (!takeEarlierVerdict(*mData)) {
        recognise(*mData);
        noteVerdict(mData);
    }
    remember(mData);
}

Image::~Image() = default;

void Image::setFolders(const std::string& filesFolder, const std::string& skinFolder) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.filesFolder = filesFolder;
    r.skinFolder = skinFolder;
}

std::shared_ptr<const ImageData> Image::find(unsigned long id) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto found = r.pictures.find(id);
    return found == r.pictures.end() ? nullptr : found->second.lock();
}

} // namespace DisplayAPI
