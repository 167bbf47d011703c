// The registry's table of elements by identifier: open addressing on a flat array.
#include "AGPIdTable.h"

#include <cstdint>

AGPIdTable::AGPIdTable() {
    rebuild(kMinimumSlots);
}

// Fibonacci hashing: the top bits of the identifier times 2^64 / golden ratio.
std::size_t AGPIdTable::homeOf(AGPId id) const {
    return static_cast<std::size_t>((static_cast<std::uint64_t>(id) * 11400714819323198485ULL) >> mShift);
}

std::size_t AGPIdTable::indexOf(AGPId id) const {
    std::size_t index = homeOf(id);
    while (mSlots[index].id != 0 && mSlots[index].id != id) {
        index = next(index);
    }
    return index;
}

AGPCommonBase* AGPIdTable::find(AGPId id) const {
    if (id == 0) {
        return nullptr;
    }
    const Slot& slot = mSlots[indexOf(id)];
    return slot.id == id ? slot.element : nullptr;
}

bool AGPIdTable::insert(AGPId id, AGPCommonBase* element) {
    if (id == 0) {
        return false;
    }
    if (2 * (mCount + 1) > mSlots.size()) {
        rebuild(2 * mSlots.size());
    }
    Slot& slot = mSlots[indexOf(id)];
    if (slot.id == id) {
        return false;
    }
    slot.id = id;
    slot.element = element;
    ++mCount;
    return true;
}

AGPCommonBase* AGPIdTable::take(AGPId id) {
    if (id == 0) {
        return nullptr;
    }
    std::size_t hole = indexOf(id);
    if (mSlots[hole].id != id) {
        return nullptr;
    }
    AGPCommonBase* const element = mSlots[hole].element;
    // Later entries of the same run move back into the hole when their search passes through it,
    // so that every search still meets its entry before an empty slot.
    for (std::size_t index = next(hole); mSlots[index].id != 0; index = next(index)) {
        const std::size_t home = homeOf(mSlots[index].id);
        const bool homeAfterHole =
            hole <= index ? (home > hole && home <= index) : (home > hole || home <= index);
        if (!homeAfterHole) {
            mSlots[hole] = mSlots[index];
            hole = index;
        }
    }
    mSlots[hole] = Slot();
    --mCount;
    if (mSlots.size() > kMinimumSlots && 8 * mCount < mSlots.size()) {
        rebuild(mSlots.size() / 2);
    }
    return element;
}

void AGPIdTable::rebuild(std::size_t slots) {
    std::vector<Slot> old(slots);
    old.swap(mSlots);
    mShift = 64;
    for (std::size_t size = slots; size > 1; size >>= 1) {
        --mShift;
    }
    mCount = 0;
    for (const Slot& slot : old) {
        if (slot.id != 0) {
            mSlots[indexOf(slot.id)] = slot;
            ++mCount;
        }
    }
}
