// The set of message queues, one per tab plus the default queue, each with its own thread.
#include "AGPMessageQueueHandler.h"

#define AGP_LOG_MODULE "AGPMessageQueueHandler"
#define AGP_LOG_SOURCE "./src/AGPMessageQueueHandler.cpp"

#include <cstdio>

#include "AGPLog.h"
#include "AGPMessageQueue.h"
#include "AGPObjectMap.h"
#include "AGPPhoneletManager.h"
#include "threads/CriticalSection.h"

AGPMessageQueueHandler::AGPMessageQueueHandler() : mNextMessageId(0), mIdLock(new Semaphore(1, 1, false)) {
    AGP_LOG(5, "Create AGPMessageQueueHandler");
}

AGPMessageQueueHandler::~AGPMessageQueueHandler() {
    AGP_LOG(5, "Destroy AGPMessageQueueHandler");
    stopReadingQueues();
    for (std::uint16_t i = 0; i < mQueues.size(); ++i) {
        if (i < mThreadIds.size()) {
            mThreaders[i].wait(mThreadIds[i]);
        }
        delete mQueues[i];
    }
    mThreaders.clear();
    mThreadIds.clear();
    mQueues.clear();
    delete mIdLock;
}

AGPMessageQueue* AGPMessageQueueHandler::createMessageQueue(messageQueueId id) {
    return new AGPMessageQueue(id);
}

bool AGPMessageQueueHandler::startAGPMessageQueueHandler(int count) {
    if (AGPPhoneletManager::findAGPServerConnection() == nullptr) {
        AGP_LOG(2, "AGPMessageQueueHandler startup failed: can't find AGPServerConnection");
        return false;
    }
    if (AGPPhoneletManager::findAGPXMLParser() == nullptr) {
        AGP_LOG(2, "AGPMessageQueueHandler startup failed: can't find AGPXMLParser");
        return false;
    }
    if (AGPPhoneletManager::findAGPGUIHandler() == nullptr) {
        AGP_LOG(2, "AGPMessageQueueHandler startup failed: can't find AGPGUIHandler");
        return false;
    }
    AGP_LOG(5, "Creating %d messageQueues", count);
    for (std::uint16_t i = 0; static_cast<int>(i) < count; ++i) {
        AGPMessageQueue* queue = createMessageQueue(i);
        mQueues.push_back(queue);
        mThreaders.push_back(Threader());
        mThreadIds.push_back(0);
        if (mThreaders.back().start(&mThreadIds.back(), queue, "", 1, 0) == 0) {
            AGP_LOG(2, "AGPMessageQueueHandler startup failed: can't spawn thread");
            mThreadIds.pop_back(); // no thread to wait for on this slot
            stopReadingQueues();
            return false;
        }
        AGP_LOG(5, "AGPMessageQueueHandler: messageQueue[%d] created\n", i);
    }
    return true;
}

AGPMessageQueue* AGPMessageQueueHandler::getMessageQueue(messageQueueId id) {
    if (id < 0 || id >= numberOfQueues()) {
        std::printf("AGPMessageQueueHandler::getMessageQueue(): Invalid queueId %d\n", id);
        return nullptr;
    }
    return mQueues[static_cast<size_t>(id)];
}

bool AGPMessageQueueHandler::addToMessageQueue(AGPMessage& msg, messageQueueId id) {
    // Asked by identifier: callers on other threads must not touch the element itself.
    AGPPhoneletManager::getAGPObjectMap()->getQueueOf(msg.agpId, id);
    if (id < 0 || id >= numberOfQueues()) {
        AGP_LOG(5, "Invalid queueId %d, message discarded", id);
        return false;
    }
    {
        CriticalSection lock(mIdLock);
        msg.id = mNextMessageId++;
    }
    AGP_LOG(6,
            "Add message queueId: %d, type: %s, prio: %s, id:%d, AGPID:%lu to AGP Message Queue\nMessage "
            "content: %s",
            id, msg.getMessageTypeString().c_str(), msg.getMessagePrioString().c_str(),
            static_cast<int>(msg.id), static_cast<unsigned long>(msg.agpId), msg.content.c_str());
    if (AGPPhoneletManager::isPhoneletShuttingDown()) {
        return false;
    }
    return mQueues[static_cast<size_t>(id)]->addToMsgQ(msg);
}

void AGPMessageQueueHandler::stopReadingQueues() {
    for (AGPMessageQueue* queue : mQueues) {
        queue->stopReadingQueue();
    }
}
