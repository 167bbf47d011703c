// The process-wide registry of elements by identifier, with per-type statistics.
#pragma once

#include <map>
#include <string>

#include "AGPTypes.h"

class AGPCommonBase;
class Semaphore;

class AGPObjectMap {
public:
    AGPObjectMap();
    // Forgets the statistics; the registered elements themselves are not deleted.
    virtual ~AGPObjectMap();
    AGPObjectMap(const AGPObjectMap&) = delete;
    AGPObjectMap& operator=(const AGPObjectMap&) = delete;

    // Registers `element` under the next identifier; 0 when that identifier is still in use.
    AGPId addAGPObject(AGPCommonBase* element);
    AGPCommonBase* getAGPObject(AGPId id);
    bool removeAGPObject(AGPId id);
    // Deletes the whole tree under `id`, children before parents.
    bool removeAGPObjectTree(AGPId id);
    void clearMap();
    void printSummary();

    // Registrations minus removals of one type name (0 for a name never seen).
    int getTypeCount(const std::string& typeName);
    size_t size();

private:
    AGPId mNextAGPId;
    std::map<AGPId, AGPCommonBase*> mObjects;
    std::map<std::string, int, std::less<>> mTypeCounts;
    Semaphore* mLock;
};
