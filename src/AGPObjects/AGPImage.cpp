// The picture element "Image": a phone file, a skin picture or a URL downloaded in the background.
#include "AGPImage.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPImage.cpp"

#include <utility>

#include "AGPDataObserver.h"
#include "AGPImageCache.h"
#include "AGPImageEnvelope.h"
#include "AGPImageStateListenerIfc.h"
#include "AGPLog.h"
#include "AGPMessage.h"
#include "AGPMessageQueueHandler.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "AGPServerConnection.h"
#include "display/Image.h"
#include "http/HttpServiceHeaders.h"

namespace {

const char* const kFilePrefix = "file:";
const char* const kMapPrefix = "map:";

bool startsWith(const std::string& text, const char* prefix) {
    return text.rfind(prefix, 0) == 0;
}

// Documents often put the source on a line of its own; the white space around it is layout.
std::string trimmed(const std::string& text) {
    const char* const blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return std::string();
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// The skin folder that a picture name's first three characters choose.
std::string skinFolder(const std::string& name) {
    static const std::pair<const char*, const char*> folders[] = {{"01_", "01_Backgrounds/"},
                                                                  {"02_", "02_Tabs/"},
                                                                  {"03_", "03_Cursor/"},
                                                                  {"04_", "04_Graphics/"},
                                                                  {"05_", "05_Icons/"}};
    for (const auto& folder : folders) {
        if (name.compare(0, 3, folder.first) == 0) {
            return folder.second;
        }
    }
    return std::string();
}

std::string skinRoot(const std::string& model, const std::string& displaySkin) {
    const bool skinOne = displaySkin == "1";
    if (model == "Veltria 80") {
        return skinOne ? ":/images/Skin2_WG/" : ":/images/Skin1_CS/";
    }
    if (model == "Veltria 60" || model == "Brisa Set 55") {
        return skinOne ? ":/images/Skin2_Brown_Orange_KR7/" : ":/images/Skin1_Silver_Blue_KR7/";
    }
    return std::string();
}

} // namespace

const std::string AGPImage::AGPCache_PARSE_FAILED = "PARSE_FAILED";

AGPImage::AGPImage()
    : mImage(nullptr), mImageStateListener(nullptr), mEnvelope(nullptr), mDisplayed(false),
      mDownloadPending(false) {
    registerElement();
}

AGPImage::~AGPImage() {
    unregisterElement();
    delete mImage;
    mImage = nullptr;
    if (mEnvelope != nullptr) {
        mEnvelope->removeReference();
        mEnvelope = nullptr;
    }
    mImageStateListener = nullptr;
}

bool AGPImage::addAttribute(std::string& name, std::string& value) {
    if (name != "Cache") {
        return false;
    }
    mCache = parseAGPCache(value);
    return mCache != AGPCache_PARSE_FAILED;
}

std::string AGPImage::parseAGPCache(std::string& text) {
    const std::string word = trimmed(text);
    if (word.empty()) {
        return AGPCache_PARSE_FAILED;
    }
    return word.substr(0, word.find_first_of(" \t\r\n"));
}

std::string AGPImage::getCompleteImagePath(std::string& name) {
    const std::string folder = skinFolder(name);
    AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
    if (folder.empty() || configuration == nullptr) {
        return std::string();
    }
    const std::string root = skinRoot(configuration->getRelatedDeviceType(), configuration->getDisplaySkin());
    return root.empty() ? std::string() : root + folder + name;
}

void AGPImage::initializeElement() {
    mCacheId = mCache == AGPCache_PARSE_FAILED ? std::string() : mCache;
    mDisplayed = true;
    AGPImageCache* cache = AGPPhoneletManager::findAGPImageCache();
    if (!mCacheId.empty() && mEnvelope == nullptr && cache != nullptr &&
        cache->getImageFromCache(mCacheId, mEnvelope)) {
        createImageFromEnvelope();
        return;
    }
    const std::string content = trimmed(getContent());
    if (content.empty()) {
        return;
    }
    if (startsWith(content, kFilePrefix)) {
        mLocalPath = content.substr(5);
        createImageFromPath();
        return;
    }
    if (startsWith(content, kMapPrefix)) {
        std::string name = content.substr(4);
        mLocalPath = getCompleteImagePath(name);
        if (mLocalPath.empty()) {
            AGP_LOG(5, "AGPImage: no skin picture for [%s] on this phone", name.c_str());
        }
        createImageFromPath();
        return;
    }
    requestDownload();
}

// Downloads wait behind everything else on the element's own queue.
void AGPImage::requestDownload() {
    AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler();
    if (queues == nullptr) {
        return;
    }
    AGPMessage message(AGPMessage::UrlRequest_Image, trimmed(getContent()));
    message.priority = AGPMessage::Low;
    message.agpId = mAGPId;
    mDownloadPending = queues->addToMessageQueue(message, mQueueID);
}

DisplayAPI::Image* AGPImage::takePicture(AGPImageStateListenerIfc* listener) {
    setImageStateListener(listener);
    if (mImage == nullptr) {
        std::string ownContent;
        downloadImage(ownContent, false);
    }
    return mImage;
}

void AGPImage::downloadImage(std::string& url, bool notify) {
    if (mImage != nullptr) {
        mDownloadPending = false;
        return;
    }
    AGPImageCache* cache = AGPPhoneletManager::findAGPImageCache();
    if (mEnvelope != nullptr) {
        if (mDisplayed) {
            createImageFromEnvelope();
        }
    } else if (!mCacheId.empty() && cache != nullptr && cache->getImageFromCache(mCacheId, mEnvelope)) {
        if (mDisplayed) {
            createImageFromEnvelope();
        }
    } else {
        const std::string source = url.empty() ? trimmed(getContent()) : url;
        char* data = nullptr;
        unsigned int size = 0;
        // Whatever the outcome, no further download is awaited for this showing.
        mDownloadPending = false;
        if (!fetch(source, data, size)) {
            delete[] data;
            return;
        }
        takeDownloadedBytes(data, size, source);
    }
    mDownloadPending = false;
    if (notify && mImageStateListener != nullptr && mImage != nullptr && mDisplayed) {
        mImageStateListener->imageDownloaded(mAGPId);
    }
}

bool AGPImage::fetch(const std::string& source, char*& data, unsigned int& size) {
    AGPServerConnection* connection = AGPPhoneletManager::findAGPServerConnection();
    if (connection == nullptr || source.empty()) {
        return false;
    }
    HttpServiceHeaders headers;
    std::string errorText;
    if (connection->getHttpData(source, AGPServerConnection::IMAGE, data, size, headers, errorText) != 1 ||
        data == nullptr || size == 0) {
        const std::string reason = errorText.empty() ? "no bytes" : errorText.substr(0, errorText.find('\n'));
        AGP_LOG(5, "AGPImage::downloadImage(): picture [%s], %u bytes: refused, %s", source.c_str(), size,
                reason.c_str());
        return false;
    }
    return true;
}

// Takes over `data` (new[]): keeps it in an envelope, or frees it when it cannot be shown.
void AGPImage::takeDownloadedBytes(char* data, unsigned int size, const std::string& source) {
    // The developer panel's log shows one outcome line per download, with its address and size.
    if (size > static_cast<unsigned int>(mMaxImageSize)) {
        AGP_LOG(5, "AGPImage::downloadImage(): picture [%s], %u bytes: refused, more than %d bytes",
                source.c_str(), size, mMaxImageSize);
        AGP_LOG(5, "AGPImage::downloadImage(): Image is too large, will be ignored");
        delete[] data;
        return;
    }
    // A body that is no picture the phone can show must neither be kept nor cached.
    auto* picture = new DisplayAPI::Image(data, static_cast<int>(size));
    if (picture->isBroken()) {
        AGP_LOG(5, "AGPImage::downloadImage(): picture [%s], %u bytes: refused, %s", source.c_str(), size,
                picture->data()->problem.c_str());
        AGP_LOG(5, "AGPImage::downloadImage(): [%s] is not a picture that can be shown, will be ignored",
                source.c_str());
        delete picture;
        delete[] data;
        return;
    }
    mEnvelope = AGPImageEnvelope::createImageEnvelope(data, static_cast<int>(size));
    if (mEnvelope == nullptr) {
        AGP_LOG(5,
                "AGPImage::downloadImage(): picture [%s], %u bytes: refused, the pictures' memory is used up",
                source.c_str(), size);
        delete picture;
        delete[] data;
        AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
        std::string details = "Used memory threshold exceeded";
        if (phonelet != nullptr) {
            phonelet->displayErrorRequest("xml.app.error.memory", details);
        }
        return;
    }
    AGPImageCache* cache = AGPPhoneletManager::findAGPImageCache();
    const bool cached = !mCacheId.empty() && cache != nullptr && cache->addImageToCache(mCacheId, mEnvelope);
    AGP_LOG(5, "AGPImage::downloadImage(): picture [%s], %u bytes: %dx%d %s, %s%s", source.c_str(), size,
            picture->getWidth(), picture->getHeight(), picture->getKind().c_str(),
            cached ? "cached as " : "not cached", cached ? mCacheId.c_str() : "");
    if (mDisplayed) {
        mImage = picture;
        return;
    }
    delete picture;
    dropEnvelope();
}

void AGPImage::hideElement() {
    mDisplayed = false;
    delete mImage;
    mImage = nullptr;
    if (!mCacheId.empty()) {
        dropEnvelope();
    }
}

void AGPImage::reDisplayElement() {
    if (mImage != nullptr) {
        mDisplayed = true;
        return;
    }
    AGPImageCache* cache = AGPPhoneletManager::findAGPImageCache();
    mDisplayed = true;
    if (!mLocalPath.empty()) {
        createImageFromPath();
    } else if (mEnvelope != nullptr) {
        createImageFromEnvelope();
    } else if (!mCacheId.empty()) {
        if (cache != nullptr && cache->getImageFromCache(mCacheId, mEnvelope)) {
            createImageFromEnvelope();
        } else {
            AGP_LOG(6,
                    "AGPImage::reDisplayElement() cacheId [%s] not found in cache, image will be downloaded "
                    "again\n",
                    mCacheId.c_str());
            requestDownload();
        }
    }
}

void AGPImage::createImageFromEnvelope() {
    delete mImage;
    mImage = new DisplayAPI::Image(mEnvelope->getImageData(), mEnvelope->getImageDataSize());
    if (mImage->isBroken()) {
        delete mImage;
        mImage = nullptr;
    }
}

void AGPImage::createImageFromPath() {
    delete mImage;
    mImage = new DisplayAPI::Image(mLocalPath);
    if (mImage->isBroken()) {
        AGP_LOG(5, "AGPImage: the picture [%s] cannot be shown, will be left out: %s", mLocalPath.c_str(),
                mImage->data()->problem.c_str());
        delete mImage;
        mImage = nullptr;
    }
}

void AGPImage::dropEnvelope() {
    if (mEnvelope != nullptr) {
        mEnvelope->removeReference();
        mEnvelope = nullptr;
    }
}
