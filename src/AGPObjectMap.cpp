// The process-wide registry of elements by identifier, with per-type statistics.
#include "AGPObjectMap.h"

#include <cstdio>
#include <vector>

#include "AGPCommonBase.h"
#include "threads/CriticalSection.h"

AGPObjectMap::AGPObjectMap() : mNextAGPId(1), mLock(new Semaphore(1, 1, true)) {}

AGPObjectMap::~AGPObjectMap() {
    clearMap();
    delete mLock;
}

AGPId AGPObjectMap::addAGPObject(AGPCommonBase* element) {
    CriticalSection lock(mLock);
    if (!mObjects.emplace(mNextAGPId, element).second) {
        return 0;
    }
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

AGPCommonBase* AGPObjectMap::getAGPObject(AGPId id) {
    CriticalSection lock(mLock);
    auto found = mObjects.find(id);
    return found == mObjects.end() ? nullptr : found->second;
}

bool AGPObjectMap::removeAGPObject(AGPId id) {
    CriticalSection lock(mLock);
    auto found = mObjects.find(id);
    if (found == mObjects.end()) {
        return false;
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
    return true;
}

bool AGPObjectMap::removeAGPObjectTree(AGPId id) {
    CriticalSection lock(mLock);
    AGPCommonBase* root = getAGPObject(id);
    if (root == nullptr) {
        return false;
    }
    std::vector<AGPCommonBase*> tree;
    AGPCommonBase::createTreeExplorationVector(root, tree);
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
