// The process-wide registry of elements by identifier, with per-type statistics.
#pragma once

#include <array>
#include <mutex>
#include <string>

#include "AGPIdTable.h"
#include "AGPObjectTypeInfo.h"
#include "AGPTypes.h"

class AGPCommonBase;

// Lifetime rule of elements: an element belongs to the queue thread that installs it, which alone
// deletes it, and only through removeAGPObjectTree (or, for a lone element, its own destructor,
// which unregisters it first). A tree leaves the registry as a whole before any of it is deleted,
// so an element found here under the lock is whole for as long as the lock is held. Other
// threads therefore ask by identifier (getQueueOf, getTypeOf, withObject) and never keep a
// pointer they got here beyond the lock.
class AGPObjectMap {
public:
    AGPObjectMap();
    // Forgets the statistics; the registered elements themselves are not deleted.
    virtual ~AGPObjectMap();
    AGPObjectMap(const AGPObjectMap&) = delete;
    AGPObjectMap& operator=(const AGPObjectMap&) = delete;

    // Registers `element` under the next identifier of a counting one. Once the counter has gone
    // round and meets an identifier still in use, the lowest free identifier is handed out and the
    // counter goes on from there. 0 only when every identifier is in use.
    AGPId addAGPObject(AGPCommonBase* element);
    // The element itself: only for the queue thread that owns it (see above).
    AGPCommonBase* getAGPObject(AGPId id);
    // The queue of a registered element; false (and `queue` untouched) for an unknown identifier.
    bool getQueueOf(AGPId id, AGPQueueNumber& queue);
    // The type of a registered element, ti_NoType for an unknown identifier.
    AGPObjectTypeInfo::AGPObjectType getTypeOf(AGPId id);
    // The type name of a registered element, empty for an unknown identifier.
    std::string getTypeNameOf(AGPId id);
    // Runs `use(element)` with the lock held while `id` is registered; false when it is not.
    // `use` must not delete elements or widgets, nor keep the pointer.
    template <class Use> bool withObject(AGPId id, Use&& use) {
        const Lock lock(mLock);
        AGPCommonBase* element = findLocked(id);
        if (element == nullptr) {
            return false;
        }
        use(element);
        return true;
    }
    bool removeAGPObject(AGPId id);
    // Deletes the whole tree under `id`, children before parents: the tree is unregistered under
    // the lock and deleted without it (a widget's destructor may wait for a listener, and
    // listeners ask the registry).
    bool removeAGPObjectTree(AGPId id);
    void clearMap();
    void printSummary();

    // Registrations minus removals of one type name (0 for a name never seen).
    int getTypeCount(const std::string& typeName);
    size_t size();
    // Lets tests bring the counter near its end.
    void setNextIdForTesting(AGPId id);

private:
    AGPId lowestFreeId() const;
    AGPCommonBase* findLocked(AGPId id);
    void forgetLocked(AGPId id);

    // One slot a type, the last for every type beyond the known ones: counting costs no lookup.
    static constexpr std::size_t kTypeSlots = AGPObjectTypeInfo::ti_NoType + 1;
    static std::size_t slotOf(AGPObjectTypeInfo::AGPObjectType type);
    void countLocked(AGPObjectTypeInfo::AGPObjectType type, int change);

    AGPId mNextAGPId;
    AGPIdTable mObjects;
    // Registrations minus removals a type, and whether the type was ever registered (a count that
    // fell back to zero is still reported).
    std::array<int, kTypeSlots> mTypeCounts{};
    std::array<bool, kTypeSlots> mTypeSeen{};
    // Taken for every element made and deleted: a plain re-entrant mutex, not the platform's
    // semaphore (whose take and give were a tenth of parsing a document).
    using Lock = std::lock_guard<std::recursive_mutex>;
    std::recursive_mutex mLock;
};
