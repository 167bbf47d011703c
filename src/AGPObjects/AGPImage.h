// The picture element "Image": a phone file, a skin picture or a URL downloaded in the background.
#pragma once

#include <string>

#include "AGPCommonBase.h"

class AGPImageEnvelope;
class AGPImageStateListenerIfc;

namespace DisplayAPI {
class Image;
} // namespace DisplayAPI

// Lifetime: owned by its parent in the document tree and deleted with the tree through the
// object registry. Every operation runs on the thread of the element's queue (installing,
// showing, hiding and its own download messages), so the fields need no lock; a download message
// finds the element again by its AGPId and does nothing when the tree is gone. The listener is
// the owning element (the parent), which lives exactly as long.
class AGPImage : public AGPCommonBase {
public:
    static const std::string AGPCache_PARSE_FAILED;
    // Larger downloads are dropped.
    static constexpr int mMaxImageSize = 524288;

    AGPImage();
    AGPImage(const AGPImage&) = delete;
    AGPImage& operator=(const AGPImage&) = delete;
    ~AGPImage() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_Image; }
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return true; }
    void initializeElement() override;
    void hideElement() override;
    void reDisplayElement() override;

    const std::string& getAGPCache() const { return mCache; }
    void setAGPCache(std::string& cache) { mCache = cache; }
    // The first word of `text`, or "PARSE_FAILED" for a blank text.
    static std::string parseAGPCache(std::string& text);

    // Makes the picture available: from the envelope held, the cache or a download of `url` (the
    // content when empty). With `notify`, the listener hears of a picture that is then shown.
    void downloadImage(std::string& url, bool notify);
    // The skin picture path of `name` for the phone's model and display skin, or "".
    static std::string getCompleteImagePath(std::string& name);
    // The widget library's picture while the element is shown and its picture is available.
    DisplayAPI::Image* getDisplayAPI_Image() { return mImage; }
    // Whether a download is still to come (the owner may reserve room for the picture).
    bool isDownloadPending() const { return mDownloadPending; }

    void setImageStateListener(AGPImageStateListenerIfc* listener) { mImageStateListener = listener; }
    // For an owner that shows the picture at once: `listener` hears of later changes, a picture
    // not there yet is fetched now; null when there is none to show.
    DisplayAPI::Image* takePicture(AGPImageStateListenerIfc* listener);

private:
    void requestDownload();
    // Makes mImage from the bytes or the path; a picture the library cannot show leaves it null.
    void createImageFromEnvelope();
    void createImageFromPath();
    bool fetch(const std::string& source, char*& data, unsigned int& size);
    void takeDownloadedBytes(char* data, unsigned int size, const std::string& source);
    void dropEnvelope();

    std::string mCache;
    std::string mCacheId;
    DisplayAPI::Image* mImage;
    AGPImageStateListenerIfc* mImageStateListener;
    AGPImageEnvelope* mEnvelope;
    std::string mLocalPath;
    bool mDisplayed;
    bool mDownloadPending;
};
