// The set of message queues, one per tab plus the default queue, each with its own thread.
#pragma once

#include <cstdint>
#include <vector>

#include "AGPMessage.h"
#include "AGPTypes.h"
#include "threads/Threader.h"

class AGPMessageQueue;
class Semaphore;

class AGPMessageQueueHandler {
public:
    using messageQueueId = AGPQueueNumber;

    AGPMessageQueueHandler();
    // Stops every queue, joins its thread and deletes it, in index order.
    virtual ~AGPMessageQueueHandler();
    AGPMessageQueueHandler(const AGPMessageQueueHandler&) = delete;
    AGPMessageQueueHandler& operator=(const AGPMessageQueueHandler&) = delete;

    virtual AGPMessageQueue* createMessageQueue(messageQueueId id);

    bool startAGPMessageQueueHandler(int count);
    AGPMessageQueue* getMessageQueue(messageQueueId id);
    // Stamps the message and queues it on the queue of the element it concerns (or on `id`).
    bool addToMessageQueue(AGPMessage& msg, messageQueueId id);
    bool addToMessageQueue(AGPMessage& msg) { return addToMessageQueue(msg, 0); }
    void stopReadingQueues();

    int numberOfQueues() const { return static_cast<int>(mQueues.size()); }

private:
    std::vector<Threader> mThreaders;
    std::vector<unsigned long> mThreadIds;
    std::vector<AGPMessageQueue*> mQueues;
    std::uint32_t mNextMessageId;
    Semaphore* mIdLock;
};
