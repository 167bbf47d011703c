// The process-wide registry of elements by identifier, with per-type statistics.
#include "AGPObjectMap.h"

#include <cstdio>
#include <limits>
#include <vector>

#include "AGPCommonBase.h"

AGPObjectMap::AGPObjectMap() : mNextAGPId(1), mLock(new Semaphore(1, 1, true)) {}

AGPObjectMap::~AGPObjectMap() {
    clearMap();
    delete mLock;
}

AGPId AGPObjectMap::addAGPObject(AGPCommonBase* element) {
    CriticalSection lock(mLock);
    if (mObjects.count(mNextAGPId) != 0) {
        // Only after the counter went round: identifiers from the first round may still live.
        mNextAGPId = lowestFreeId();
        if (mNextAGPId == 0) {
            return 0;
        }
    }
    mObjects.emplace(mNextAGPId, element);
    const std::string& typeName = AGPObjectTypeInfo::getTypeNameRef(element->getAGPObjectType());
    auto count = mTypeCounts.find(typeName);
    if (count == mTypeCounts.end()) {
        mTypeCounts.emplace(typeName, 1);
    } else {
        ++count->second;
    }
    const AGPId id = mNextAGPId++;
    if (mNextAGPId == 0) {
        mNextAGPId = 1; // 0 means "no element" and is never handed out
    }
    return id;
}

// The map is ordered, so the first gap in its keys from 1 on is the lowest free identifier.
AGPId AGPObjectMap::lowestFreeId() const {
    AGPId candidate = 1;
    for (auto it = mObjects.lower_bound(1); it != mObjects.end() && it->first == candidate; ++it) {
        if (candidate == std::numeric_limits<AGPId>::max()) {
            return 0; // every identifier is in use
        }
        ++candidate;
    }
    return candidate;
}

void AGPObjectMap::setNextIdForTesting(AGPId id) {
    CriticalSection lock(mLock);
    mNextAGPId = id == 0 ? 1 : id;
}

AGPCommonBase* AGPObjectMap::findLocked(AGPId id) {
    auto found = mObjects.find(id);
    return found == mObjects.end() ? nullptr : found->second;
}

AGPCommonBase* AGPObjectMap::getAGPObject(AGPId id) {
    CriticalSection lock(mLock);
    return findLocked(id);
}

bool AGPObjectMap::getQueueOf(AGPId id, AGPQueueNumber& queue) {
    CriticalSection lock(mLock);
    AGPCommonBase* element = findLocked(id);
    if (element == nullptr) {
        return false;
    }
    queue = element->getQueueID();
    return true;
}

AGPObjectTypeInfo::AGPObjectType AGPObjectMap::getTypeOf(AGPId id) {
    CriticalSection lock(mLock);
    AGPCommonBase* element = findLocked(id);
    return element != nullptr ? element->getAGPObjectType() : AGPObjectTypeInfo::ti_NoType;
}

std::string AGPObjectMap::getTypeNameOf(AGPId id) {
    CriticalSection lock(mLock);
    AGPCommonBase* element = findLocked(id);
    return element != nullptr ? AGPObjectTypeInfo::getTypeNameRef(element->getAGPObjectType())
                              : std::string();
}

void AGPObjectMap::forgetLocked(AGPId id) {
    auto found = mObjects.find(id);
    if (found == mObjects.end()) {
        return;
    }
    AGPCommonBase* element = found->second;
    mObjects.erase(found);
    const std::string& typeName = AGPObjectTypeInfo::getTypeNameRef(element->getAGPObjectType());
    auto count = mTypeCounts.find(typeName);
    if (count == mTypeCounts.end()) {
        mTypeCounts.emplace(typeName, -1);
    } else {
        --count->second;
    }
}

bool AGPObjectMap::removeAGPObject(AGPId id) {
    CriticalSection lock(mLock);
    if (findLocked(id) == nullptr) {
        return false;
    }
    forgetLocked(id);
    return true;
}

bool AGPObjectMap::removeAGPObjectTree(AGPId id) {
    std::vector<AGPCommonBase*> tree;
    {
        CriticalSection lock(mLock);
        AGPCommonBase* root = findLocked(id);
        if (root == nullptr) {
            return false;
        }
        AGPCommonBase::createTreeExplorationVector(root, tree);
        for (AGPCommonBase* element : tree) {
            forgetLocked(element->getAGPObjectID());
        }
    }
    for (AGPCommonBase* element : tree) {
        delete element;
    }
    return true;
}

void AGPObjectMap::clearMap() {
    CriticalSection lock(mLock);
    mTypeCounts.clear();
}

void AGPObjectMap::printSummary() {
    CriticalSection lock(mLock);
    std::printf("printSummary started\n");
    for (const auto& entry : mTypeCounts) {
        std::printf("%d X %s\n", entry.second, entry.first.c_str());
    }
    std::printf("printSummary finished\n");
}

int AGPObjectMap::getTypeCount(const std::string& typeName) {
    CriticalSection lock(mLock);
    auto found = mTypeCounts.find(typeName);
    return found == mTypeCounts.end() ? 0 : found->second;
}

size_t AGPObjectMap::size() {
    CriticalSection lock(mLock);
    return mObjects.size();
}
