// The registry's table of elements by identifier: open addressing on a flat array.
#include "AGPIdTable.h"

AGPIdTable::AGPIdTable() {
    rebuild(kMinimumSlots);
}

// Identifiers are handed out counting up and the live ones span less than the array, so the
// low bits alone place them side by side without collisions; neighbours in a tree stay
// neighbours in memory (a scattering hash made every registration of a large document a cache
// miss).
std::size_t AGPIdTable::homeOf(AGPId id) const {
    return static_cast<std::size_t>(id) & (mSlots.size() - 1);
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
    if (4 * (mCount + 1) > 3 * mSlots.size()) {
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
    return element;
}

void AGPIdTable::rebuild(std::size_t slots) {
    std::vector<Slot> old(slots);
    old.swap(mSlots);
    mCount = 0;
    for (const Slot& slot : old) {
        if (slot.id != 0) {
            mSlots[indexOf(slot.id)] = slot;
            ++mCount;
        }
    }
}
