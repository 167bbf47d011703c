// The cache of downloaded pictures shared by the elements of all documents, by cache identifier.
#include "AGPImageCache.h"

#define AGP_LOG_MODULE "AGPImageCache"
#define AGP_LOG_SOURCE "./src/AGPImageCache.cpp"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "AGPImageEnvelope.h"
#include "AGPLog.h"
#include "threads/CriticalSection.h"
#include "threads/Semaphore.h"

AGPImageCache::AGPImageCache()
    : mCachedImagesBytes(0), mCacheLock(std::make_unique<Semaphore>(1, 1, false)) {}

AGPImageCache::~AGPImageCache() {
    flushImageCache();
}

// The cache starts empty; pictures enter it as picture elements download them.
bool AGPImageCache::startAGPImageCache() {
    CriticalSection lock(mCacheLock.get());
    mCacheMap.clear();
    mCacheIdUsageList.clear();
    mCachedImagesBytes = 0;
    return true;
}

bool AGPImageCache::getImageFromCache(const std::string& cacheId, AGPImageEnvelope*& envelope) {
    CriticalSection lock(mCacheLock.get());
    auto found = mCacheMap.find(cacheId);
    if (found == mCacheMap.end()) {
        AGP_LOG(5, "AGPImageCache::findImageInCache(): cacheId %s not found", cacheId.c_str());
        return false;
    }
    envelope = found->second;
    mCacheIdUsageList.remove(cacheId);
    mCacheIdUsageList.push_back(cacheId);
    envelope->addReference();
    AGP_LOG(5, "AGPImageCache::findImageInCache(): cacheId %s found", cacheId.c_str());
    return true;
}

bool AGPImageCache::addImageToCache(std::string& cacheId, AGPImageEnvelope* envelope) {
    CriticalSection lock(mCacheLock.get());
    if (mCacheMap.count(cacheId) != 0) {
        AGP_LOG(5, "AGPImageCache::addImageToCache(): cacheId %s already exists", cacheId.c_str());
        return false;
    }
    if (envelope == nullptr || envelope->getImageData() == nullptr || envelope->getImageDataSize() < 1) {
        AGP_LOG(2, "AGPImageCache::addImageToCache(): invalid image detected");
        return false;
    }
    removeOldestUnusedImages();
    mCacheMap[cacheId] = envelope;
    mCacheIdUsageList.push_back(cacheId);
    envelope->addReference();
    mCachedImagesBytes += envelope->getImageDataSize();
    AGP_LOG(5, "AGPImageCache::addImageToCache(): cacheId %s added", cacheId.c_str());
    return true;
}

// Only pictures that no element shows (the cache holds their only reference) may go; pictures
// in use stay even when the cache is over its bounds. Called with the lock held.
void AGPImageCache::removeOldestUnusedImages() {
    std::vector<std::string> unused;
    std::int32_t unusedBytes = 0;
    for (const std::string& cacheId : mCacheIdUsageList) {
        AGPImageEnvelope* envelope = mCacheMap[cacheId];
        if (envelope->getRefCounter() == 1) {
            unused.push_back(cacheId);
            unusedBytes += envelope->getImageDataSize();
        }
    }
    std::size_t next = 0;
    while (next < unused.size() &&
           (unused.size() - next > mMaxUnusedImages || unusedBytes > mMaxUnusedBytes)) {
        const std::string& cacheId = unused[next++];
        AGPImageEnvelope* envelope = mCacheMap[cacheId];
        const std::int32_t size = envelope->getImageDataSize();
        mCachedImagesBytes -= size;
        unusedBytes -= size;
        envelope->removeReference();
        mCacheMap.erase(cacheId);
        mCacheIdUsageList.remove(cacheId);
        AGP_LOG(5, "AGPImageCache::addImageToCache(): the oldest unused cacheId [%s] has been removed",
                cacheId.c_str());
    }
}

void AGPImageCache::flushImageCache() {
    CriticalSection lock(mCacheLock.get());
    AGP_LOG(5, "AGPImageCache::flushImageCache() called");
    for (auto& entry : mCacheMap) {
        entry.second->removeReference();
    }
    mCacheMap.clear();
    mCacheIdUsageList.clear();
    mCachedImagesBytes = 0;
}

std::size_t AGPImageCache::getCachedImagesCount() {
    CriticalSection lock(mCacheLock.get());
    return mCacheMap.size();
}

std::int32_t AGPImageCache::getCachedImagesBytes() {
    CriticalSection lock(mCacheLock.get());
    return mCachedImagesBytes;
}

void AGPImageCache::printCacheContent() {
    std::printf(
        "----------\nmCacheMap content: items = %d, total image bytes = %d, cached images bytes = %d\n",
        static_cast<int>(mCacheMap.size()), AGPImageEnvelope::getTotalImagesSize(), mCachedImagesBytes);
    for (const auto& entry : mCacheMap) {
        // The pointer is printed as a number for telling entries apart, as the debugging aid always did.
        std::printf("cacheId: %s:, image pointer: %d, ref.count: %d\n", entry.first.c_str(),
                    static_cast<int>(reinterpret_cast<std::uintptr_t>(entry.second)),
                    entry.second->getRefCounter());
    }
    std::printf("mCacheIdUsageList content: items = %d\n", static_cast<int>(mCacheIdUsageList.size()));
    for (const std::string& cacheId : mCacheIdUsageList) {
        std::printf("cacheId: %s\n", cacheId.c_str());
    }
    std::printf("----------\n");
}
