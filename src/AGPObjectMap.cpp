// The process-wide registry of elements by identifier, with per-type statistics.
#include "AGPObjectMap.h"

#include <cstdio>
#include <limits>
#include <map>
#include <vector>

#include "AGPCommonBase.h"

AGPObjectMap::AGPObjectMap() : mNextAGPId(1) {}

AGPObjectMap::~AGPObjectMap() {
    clearMap();
}

AGPId AGPObjectMap::addAGPObject(AGPCommonBase* element) {
    const Lock lock(mLock);
    if (!mObjects.insert(mNextAGPId, element)) {
        // Only after the counter went round: identifiers from the first round may still live.
        mNextAGPId = lowestFreeId();
        if (mNextAGPId == 0) {
            return 0;
        }
        mObjects.insert(mNextAGPId, element);
    }
    countLocked(element->getAGPObjectType(), 1);
    const AGPId id = mNextAGPId++;
    if (mNextAGPId == 0) {
        mNextAGPId = 1; // 0 means "no element" and is never handed out
    }
    return id;
}

// Only needed once the counter went round; there are never more live elements than fit in memory,
// so the search ends long before the last identifier.
AGPId AGPObjectMap::lowestFreeId() const {
    AGPId candidate = 1;
    while (mObjects.find(candidate) != nullptr) {
        if (candidate == std::numeric_limits<AGPId>::max()) {
            return 0; // every identifier is in use
        }
        ++candidate;
    }
    return candidate;
}

std::size_t AGPObjectMap::slotOf(AGPObjectTypeInfo::AGPObjectType type) {
    return type >= 0 && static_cast<std::size_t>(type) < kTypeSlots ? static_cast<std::size_t>(type)
                                                                    : kTypeSlots - 1;
}

void AGPObjectMap::countLocked(AGPObjectTypeInfo::AGPObjectType type, int change) {
    const std::size_t slot = slotOf(type);
    mTypeCounts[slot] += change;
    mTypeSeen[slot] = true;
}

void AGPObjectMap::setNextIdForTesting(AGPId id) {
    const Lock lock(mLock);
    mNextAGPId = id == 0 ? 1 : id;
}

AGPCommonBase* AGPObjectMap::findLocked(AGPId id) {
    return mObjects.find(id);
}

AGPCommonBase* AGPObjectMap::getAGPObject(AGPId id) {
    const Lock lock(mLock);
    return findLocked(id);
}

bool AGPObjectMap::getQueueOf(AGPId id, AGPQueueNumber& queue) {
    const Lock lock(mLock);
    AGPCommonBase* element = findLocked(id);
    if (element == nullptr) {
        return false;
    }
    queue = element->getQueueID();
    return true;
}

AGPObjectTypeInfo::AGPObjectType AGPObjectMap::getTypeOf(AGPId id) {
    const Lock lock(mLock);
    AGPCommonBase* element = findLocked(id);
    return element != nullptr ? element->getAGPObjectType() : AGPObjectTypeInfo::ti_NoType;
}

std::string AGPObjectMap::getTypeNameOf(AGPId id) {
    const Lock lock(mLock);
    AGPCommonBase* element = findLocked(id);
    return element != nullptr ? AGPObjectTypeInfo::getTypeNameRef(element->getAGPObjectType())
                              : std::string();
}

void AGPObjectMap::forgetLocked(AGPId id) {
    AGPCommonBase* element = mObjects.take(id);
    if (element != nullptr) {
        countLocked(element->getAGPObjectType(), -1);
    }
}

bool AGPObjectMap::removeAGPObject(AGPId id) {
    const Lock lock(mLock);
    if (findLocked(id) == nullptr) {
        return false;
    }
    forgetLocked(id);
    return true;
}

bool AGPObjectMap::removeAGPObjectTree(AGPId id) {
    std::vector<AGPCommonBase*> tree;
    {
        const Lock lock(mLock);
        AGPCommonBase* root = findLocked(id);
        if (root == nullptr) {
            return false;
        }
        AGPCommonBase::createTreeExplorationVector(root, tree);
        for (AGPCommonBase* element : tree) {
            forgetLocked(element->getAGPObjectID());
            element->markUnregistered();
        }
    }
    for (AGPCommonBase* element : tree) {
        delete element;
    }
    return true;
}

void AGPObjectMap::clearMap() {
    const Lock lock(mLock);
    mTypeCounts.fill(0);
    mTypeSeen.fill(false);
}

// Types that share a name ("unknown_type") are counted together, in the order of their names.
void AGPObjectMap::printSummary() {
    const Lock lock(mLock);
    std::map<std::string, int> byName;
    for (std::size_t slot = 0; slot < kTypeSlots; ++slot) {
        if (mTypeSeen[slot]) {
            byName[AGPObjectTypeInfo::getTypeNameRef(static_cast<AGPObjectTypeInfo::AGPObjectType>(slot))] +=
                mTypeCounts[slot];
        }
    }
    std::printf("printSummary started\n");
    for (const auto& entry : byName) {
        std::printf("%d X %s\n", entry.second, entry.first.c_str());
    }
    std::printf("printSummary finished\n");
}

int AGPObjectMap::getTypeCount(const std::string& typeName) {
    const Lock lock(mLock);
    int count = 0;
    for (std::size_t slot = 0; slot < kTypeSlots; ++slot) {
        if (AGPObjectTypeInfo::getTypeNameRef(static_cast<AGPObjectTypeInfo::AGPObjectType>(slot)) ==
            typeName) {
            count += mTypeCounts[slot];
        }
    }
    return count;
}

size_t AGPObjectMap::size() {
    const Lock lock(mLock);
    return mObjects.size();
}
