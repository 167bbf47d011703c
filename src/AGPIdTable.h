// The registry's table of elements by identifier: open addressing on a flat array.
#pragma once

#include <cstddef>
#include <vector>

#include "AGPTypes.h"

class AGPCommonBase;

// Identifier to element, without an allocation per entry: linear probing in robin hood order
// on a power-of-two array that is at most three quarters full, deletion by shifting the
// following entries back (no markers left behind). Identifiers are handed out counting up; runs
// of sixteen stay together, the runs are scattered. The array keeps the size the largest tree
// needed (16 bytes an element; the document bound keeps that to a few MB): shrinking and growing
// again with every large document cost more in page faults than the parse itself. Identifier 0
// is never stored. Not thread-safe: the registry guards it with its lock.
class AGPIdTable {
public:
    AGPIdTable();

    // The element of `id`, or null.
    AGPCommonBase* find(AGPId id) const;
    // Adds `id`; false (and nothing changed) when it is there already or is 0.
    bool insert(AGPId id, AGPCommonBase* element);
    // Removes `id` and answers its element, or null when it was not there.
    AGPCommonBase* take(AGPId id);
    std::size_t size() const { return mCount; }
    std::size_t capacity() const { return mSlots.size(); }

private:
    struct Slot {
        AGPId id = 0; // 0: empty
        AGPCommonBase* element = nullptr;
    };
    static constexpr std::size_t kMinimumSlots = 1024;
    static constexpr std::size_t kNowhere = ~std::size_t(0);
    static constexpr unsigned kBlockBits = 4;

    std::size_t homeOf(AGPId id) const;
    std::size_t next(std::size_t index) const { return (index + 1) & (mSlots.size() - 1); }
    // How far the entry in `index` sits from its home slot.
    std::size_t distanceOf(std::size_t index) const;
    // The slot of `id`, or kNowhere.
    std::size_t indexOf(AGPId id) const;
    void place(Slot entry);
    void rebuild(std::size_t slots);

    std::vector<Slot> mSlots;
    std::size_t mCount = 0;
    unsigned mShift = 64; // 64 minus the bits of a block number
};
