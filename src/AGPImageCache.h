// The cache of downloaded pictures shared by the elements of all documents, by cache identifier.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>

class AGPImageEnvelope;
class Semaphore;

// One instance, created by AGPPhoneletManager and deleted at shutdown after the queue threads
// ended. The cache holds one reference on each cached envelope; an envelope handed out by
// getImageFromCache carries one more reference, which belongs to the caller.
class AGPImageCache {
public:
    // Unused pictures (held only by the cache) beyond these bounds are dropped, oldest first.
    static constexpr std::size_t mMaxUnusedImages = 20;
    static constexpr std::int32_t mMaxUnusedBytes = 1048576;

    AGPImageCache();
    virtual ~AGPImageCache();
    AGPImageCache(const AGPImageCache&) = delete;
    AGPImageCache& operator=(const AGPImageCache&) = delete;

    bool startAGPImageCache();
    // true and `envelope` (with a reference for the caller) when `cacheId` is cached.
    bool getImageFromCache(const std::string& cacheId, AGPImageEnvelope*& envelope);
    // false when `cacheId` is cached already or the envelope holds no bytes.
    bool addImageToCache(std::string& cacheId, AGPImageEnvelope* envelope);
    void flushImageCache();
    // Writes the cache's content to standard output; a debugging aid that takes no lock.
    void printCacheContent();

    std::size_t getCachedImagesCount();
    std::int32_t getCachedImagesBytes();

private:
    void removeOldestUnusedImages();

    std::map<std::string, AGPImageEnvelope*> mCacheMap;
    std::list<std::string> mCacheIdUsageList;
    std::int32_t mCachedImagesBytes;
    std::unique_ptr<Semaphore> mCacheLock;
};
