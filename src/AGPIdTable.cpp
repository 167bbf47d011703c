// The registry's table of elements by identifier: open addressing on a flat array.
#include "AGPIdTable.h"

#include <cstdint>
#include <utility>

AGPIdTable::AGPIdTable() {
    rebuild(kMinimumSlots);
}

// Identifiers are handed out counting up. Sixteen consecutive ones share a block of slots, so
// neighbours in a tree stay neighbours in memory (a hash scattering each identifier made every
// registration of a large document a cache miss); the blocks themselves are scattered by
// Fibonacci hashing, so that long-lived elements (the pool, cached screens) never form a wall
// that every new identifier after them has to walk along (placing by the low bits alone did).
std::size_t AGPIdTable::homeOf(AGPId id) const {
    const std::uint64_t block =
        (static_cast<std::uint64_t>(id >> kBlockBits) * 11400714819323198485ULL) >> mShift;
    return static_cast<std::size_t>(block << kBlockBits) | (id & ((1u << kBlockBits) - 1));
}

std::size_t AGPIdTable::distanceOf(std::size_t index) const {
    return (index - homeOf(mSlots[index].id)) & (mSlots.size() - 1);
}

// Entries keep "robin hood" order: along a run, no entry is further from its home than the one
// after it would be in its place. A search ends at the first entry closer to home than itself,
// and a removal shifts back only the displaced entries after it; with packed identifiers both
// stop at once instead of walking the whole run of live identifiers.
std::size_t AGPIdTable::indexOf(AGPId id) const {
    std::size_t index = homeOf(id);
    for (std::size_t distance = 0;; ++distance, index = next(index)) {
        const AGPId there = mSlots[index].id;
        if (there == id) {
            return index;
        }
        if (there == 0 || distanceOf(index) < distance) {
            return kNowhere;
        }
    }
}

AGPCommonBase* AGPIdTable::find(AGPId id) const {
    if (id == 0) {
        return nullptr;
    }
    const std::size_t index = indexOf(id);
    return index == kNowhere ? nullptr : mSlots[index].element;
}

bool AGPIdTable::insert(AGPId id, AGPCommonBase* element) {
    if (id == 0 || indexOf(id) != kNowhere) {
        return false;
    }
    if (4 * (mCount + 1) > 3 * mSlots.size()) {
        rebuild(2 * mSlots.size());
    }
    place(Slot{id, element});
    ++mCount;
    return true;
}

// Walks from the entry's home; an entry nearer its own home gives up its slot and moves on.
void AGPIdTable::place(Slot entry) {
    std::size_t index = homeOf(entry.id);
    for (std::size_t distance = 0;; ++distance, index = next(index)) {
        if (mSlots[index].id == 0) {
            mSlots[index] = entry;
            return;
        }
        const std::size_t theirs = distanceOf(index);
        if (theirs < distance) {
            std::swap(entry, mSlots[index]);
            distance = theirs;
        }
    }
}

AGPCommonBase* AGPIdTable::take(AGPId id) {
    if (id == 0) {
        return nullptr;
    }
    std::size_t hole = indexOf(id);
    if (hole == kNowhere) {
        return nullptr;
    }
    AGPCommonBase* const element = mSlots[hole].element;
    for (std::size_t index = next(hole); mSlots[index].id != 0 && distanceOf(index) != 0;
         index = next(index)) {
        mSlots[hole] = mSlots[index];
        hole = index;
    }
    mSlots[hole] = Slot();
    --mCount;
    return element;
}

void AGPIdTable::rebuild(std::size_t slots) {
    std::vector<Slot> old(slots);
    old.swap(mSlots);
    mShift = 64 + kBlockBits;
    for (std::size_t size = slots; size > 1; size >>= 1) {
        --mShift;
    }
    for (const Slot& slot : old) {
        if (slot.id != 0) {
            place(slot);
        }
    }
}
