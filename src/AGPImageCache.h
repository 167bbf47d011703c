// The cache of pictures shared by the elements of all documents.
#pragma once

class AGPImageCache {
public:
    AGPImageCache() = default;
    virtual ~AGPImageCache() = default;
    AGPImageCache(const AGPImageCache&) = delete;
    AGPImageCache& operator=(const AGPImageCache&) = delete;

    bool startAGPImageCache();
};
