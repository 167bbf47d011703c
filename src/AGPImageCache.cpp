// The cache of pictures shared by the elements of all documents.
#include "AGPImageCache.h"

// The cache starts empty; pictures enter it as picture elements load them.
bool AGPImageCache::startAGPImageCache() {
    return true;
}
