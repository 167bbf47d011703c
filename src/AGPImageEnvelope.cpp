// The bytes of one downloaded picture, shared by reference count under a process-wide budget.
#include "AGPImageEnvelope.h"

std::atomic<std::int32_t> AGPImageEnvelope::totalImagesSize{0};

// The size is reserved before the envelope exists, so two threads cannot both fit in the last
// free bytes of the budget.
AGPImageEnvelope* AGPImageEnvelope::createImageEnvelope(char* data, int size) {
    if (data == nullptr || size < 0) {
        return nullptr;
    }
    std::int32_t total = totalImagesSize.load();
    do {
        if (size > mMaxTotalImagesSize - total) {
            return nullptr;
        }
    } while (!totalImagesSize.compare_exchange_weak(total, total + size));
    return new AGPImageEnvelope(data, size);
}

AGPImageEnvelope::AGPImageEnvelope(char* data, int size)
    : mRefCounter(1), mImageData(data), mImageDataSize(size) {}

AGPImageEnvelope::~AGPImageEnvelope() {
    delete[] mImageData;
    totalImagesSize -= mImageDataSize;
}

void AGPImageEnvelope::addReference() {
    ++mRefCounter;
}

void AGPImageEnvelope::removeReference() {
    if (--mRefCounter == 0) {
        delete this;
    }
}
