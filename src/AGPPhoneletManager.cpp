// The service registry: one instance of each phonelet service, created on first use.
#include "AGPPhoneletManager.h"

#include "AGPAudioHandler.h"
#include "AGPCallHandler.h"
#include "AGPDataObserver.h"
#include "AGPGUIHandler.h"
#include "AGPImageCache.h"
#include "AGPKeysHandler.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectMap.h"
#include "AGPObjectPool.h"
#include "AGPPhonebookHandler.h"
#include "AGPPhonelet.h"
#include "AGPRemoteTraceHandler.h"
#include "AGPServerConnection.h"
#include "AGPXMLParser.h"

AGPPhonelet* AGPPhoneletManager::mpAgpPhonelet = nullptr;
AGPObjectMap* AGPPhoneletManager::mpAgpObjectMap = nullptr;
AGPGUIHandler* AGPPhoneletManager::mpAgpGUIHandler = nullptr;
AGPMessageQueueHandler* AGPPhoneletManager::mpAgpMessageQueueHandler = nullptr;
AGPDataObserver* AGPPhoneletManager::mpAgpDataObserver = nullptr;
AGPServerConnection* AGPPhoneletManager::mpAgpServerConnection = nullptr;
AGPXMLParser* AGPPhoneletManager::mpAgpXMLParser = nullptr;
AGPPhonebookHandler* AGPPhoneletManager::mpAgpPhonebookHandler = nullptr;
AGPCallHandler* AGPPhoneletManager::mpAgpCallHandler = nullptr;
AGPAudioHandler* AGPPhoneletManager::mpAgpAudioHandler = nullptr;
AGPImageCache* AGPPhoneletManager::mpAgpImageCache = nullptr;
AGPKeysHandler* AGPPhoneletManager::mpAgpKeysHandler = nullptr;
AGPRemoteTraceHandler* AGPPhoneletManager::mpAgpRemoteTraceHandler = nullptr;

namespace {

template <typename Service> Service* getOrCreate(Service*& instance) {
    if (instance == nullptr) {
        instance = new Service();
    }
    return instance;
}

template <typename Service> void deleteService(Service*& instance) {
    delete instance;
    instance = nullptr;
}

} // namespace

AGPObjectMap* AGPPhoneletManager::getAGPObjectMap() {
    return getOrCreate(mpAgpObjectMap);
}

AGPGUIHandler* AGPPhoneletManager::getAGPGUIHandler() {
    return getOrCreate(mpAgpGUIHandler);
}

AGPMessageQueueHandler* AGPPhoneletManager::getAGPMessageQueueHandler() {
    return getOrCreate(mpAgpMessageQueueHandler);
}

AGPDataObserver* AGPPhoneletManager::getAGPDataObserver() {
    return getOrCreate(mpAgpDataObserver);
}

AGPServerConnection* AGPPhoneletManager::getAGPServerConnection() {
    return getOrCreate(mpAgpServerConnection);
}

AGPXMLParser* AGPPhoneletManager::getAGPXMLParser() {
    return getOrCreate(mpAgpXMLParser);
}

AGPPhonebookHandler* AGPPhoneletManager::getAGPPhonebookHandler() {
    return getOrCreate(mpAgpPhonebookHandler);
}

AGPCallHandler* AGPPhoneletManager::getAGPCallHandler() {
    return getOrCreate(mpAgpCallHandler);
}

AGPAudioHandler* AGPPhoneletManager::getAGPAudioHandler() {
    return getOrCreate(mpAgpAudioHandler);
}

AGPImageCache* AGPPhoneletManager::getAGPImageCache() {
    return getOrCreate(mpAgpImageCache);
}

AGPKeysHandler* AGPPhoneletManager::getAGPKeysHandler() {
    return getOrCreate(mpAgpKeysHandler);
}

AGPRemoteTraceHandler* AGPPhoneletManager::getAGPRemoteTraceHandler() {
    return getOrCreate(mpAgpRemoteTraceHandler);
}

const Translator* AGPPhoneletManager::getTranslator() {
    return mpAgpPhonelet != nullptr ? mpAgpPhonelet->getTranslator() : nullptr;
}

bool AGPPhoneletManager::isPhoneletShuttingDown() {
    return mpAgpPhonelet != nullptr && mpAgpPhonelet->isShuttingDown();
}

bool AGPPhoneletManager::isErrorDocumentShown() {
    return mpAgpPhonelet != nullptr && mpAgpPhonelet->isErrorDisplayed();
}

void AGPPhoneletManager::shutdownPhonelet() {
    deleteService(mpAgpMessageQueueHandler);
    deleteService(mpAgpGUIHandler);
    deleteService(mpAgpServerConnection);
    deleteService(mpAgpXMLParser);
    deleteService(mpAgpPhonebookHandler);
    deleteService(mpAgpCallHandler);
    deleteService(mpAgpAudioHandler);
    deleteService(mpAgpImageCache);
    deleteService(mpAgpDataObserver);
    deleteService(mpAgpKeysHandler);
    deleteService(mpAgpRemoteTraceHandler);
    AGPObjectPool::shutdownPool();
    deleteService(mpAgpObjectMap);
}
