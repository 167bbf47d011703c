// The service registry: one instance of each phonelet service, created on first use.
#include "AGPPhoneletManager.h"

#include "AGPObjectMap.h"
#include "AGPObjectPool.h"
#include "AGPXMLParser.h"

AGPPhonelet* AGPPhoneletManager::mpAgpPhonelet = nullptr;
AGPObjectMap* AGPPhoneletManager::mpAgpObjectMap = nullptr;
AGPXMLParser* AGPPhoneletManager::mpAgpXMLParser = nullptr;

// Creation is not locked: every service is first asked for on the host's thread during start-up,
// before any queue thread exists.
template <typename Service> static Service* getOrCreate(Service*& instance) {
    if (instance == nullptr) {
        instance = new Service();
    }
    return instance;
}

template <typename Service> static void deleteService(Service*& instance) {
    delete instance;
    instance = nullptr;
}

AGPObjectMap* AGPPhoneletManager::getAGPObjectMap() {
    return getOrCreate(mpAgpObjectMap);
}

AGPXMLParser* AGPPhoneletManager::getAGPXMLParser() {
    return getOrCreate(mpAgpXMLParser);
}

void AGPPhoneletManager::shutdownPhonelet() {
    deleteService(mpAgpXMLParser);
    AGPObjectPool::shutdownPool();
    deleteService(mpAgpObjectMap);
}
