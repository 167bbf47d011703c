// Feeds arbitrary bytes to the document parser and deletes whatever tree it builds.
#include <cstddef>
#include <cstdint>
#include <string>

#include "AGPCommonBase.h"
#include "AGPObjectMap.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPXMLParser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool poolReady = [] {
        AGPObjectPool::initPool();
        return true;
    }();
    (void)poolReady;
    std::string document(reinterpret_cast<const char*>(data), size);
    AGPCommonBase* root = nullptr;
    AGPPhoneletManager::getAGPXMLParser()->parseXMLData(document, root);
    if (root != nullptr) {
        AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(root->getAGPObjectID());
    }
    return 0;
}
