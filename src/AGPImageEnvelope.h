// The bytes of one downloaded picture, shared by reference count under a process-wide budget.
#pragma once

#include <atomic>
#include <cstdint>

// Lifetime: created with one reference (the creator's); every holder (an Image element, the image
// cache) owns one reference and gives it back with removeReference, which deletes the envelope at
// zero. Holders on different queue threads may add and remove references at the same time, so the
// count and the budget are atomic; a pointer is only used while its holder's reference lasts.
class AGPImageEnvelope {
public:
    // The budget of all envelopes together, in bytes.
    static constexpr std::int32_t mMaxTotalImagesSize = 5242880;

    // A new envelope that owns `data` (new[]) with one reference, or null, taking nothing over,
    // when the budget cannot hold `size` more bytes.
    static AGPImageEnvelope* createImageEnvelope(char* data, int size);

    AGPImageEnvelope(const AGPImageEnvelope&) = delete;
    AGPImageEnvelope& operator=(const AGPImageEnvelope&) = delete;

    void addReference();
    // Gives one reference back; the last one deletes the envelope.
    void removeReference();
    int getRefCounter() const { return mRefCounter; }
    char* getImageData() const { return mImageData; }
    int getImageDataSize() const { return mImageDataSize; }
    static int getTotalImagesSize() { return totalImagesSize; }

private:
    AGPImageEnvelope(char* data, int size);
    ~AGPImageEnvelope();

    std::atomic<std::int32_t> mRefCounter;
    char* mImageData;
    std::int32_t mImageDataSize;
    static std::atomic<std::int32_t> totalImagesSize;
};
