// One prioritised message queue with its own thread, which processes the messages one at a time.
#pragma once

#include <atomic>
#include <cstdint>
#include <queue>
#include <string>
#include <vector>

#include "AGPMessage.h"
#include "AGPTypes.h"
#include "threads/Threadable.h"

class AGPCommonBase;
class HttpServiceHeaders;
class Semaphore;

class AGPMessageQueue : public Threadable {
public:
    static constexpr std::uint32_t mMaxSize = 100;     // messages that are neither pushes nor images
    static constexpr std::uint32_t mMaxPushReq = 20;   // pushes, types 4 to 7
    static constexpr std::uint32_t mMaxImageReq = 500; // image downloads, type 10

    explicit AGPMessageQueue(AGPQueueNumber id);
    ~AGPMessageQueue() override;
    AGPMessageQueue(const AGPMessageQueue&) = delete;
    AGPMessageQueue& operator=(const AGPMessageQueue&) = delete;

    void run() override;
    // Blocks until a message or a stop request arrives; false when the queue is stopping.
    virtual bool getMsgFromQ(AGPMessage& msg);
    // Queues a copy of `msg` within the limits; false when its kind of message is at its limit.
    virtual bool addToMsgQ(AGPMessage& msg);

    void flushMessageQueue();
    void stopReadingQueue();
    void processMessage(AGPMessage& msg);

    static bool pushMsgCheck(AGPMessage& msg);
    static bool imageMsgCheck(AGPMessage& msg);

    size_t pendingMessages();

private:
    bool admit(AGPMessage& msg);
    void processDocumentRequest(AGPMessage& msg);
    void processExitRequest(AGPMessage& msg);
    void processErrorDocument(AGPMessage& msg);
    void processImageRequest(AGPMessage& msg);
    void processCommand(AGPMessage& msg);
    void processReceivedDocument(AGPMessage& msg, std::string& document, HttpServiceHeaders& headers);
    void processTabCommand(AGPMessage& msg);
    void traceAndReport(const std::string& text);

    std::priority_queue<AGPMessage, std::vector<AGPMessage>> mQueue;
    Semaphore* mMsgAvailable;
    Semaphore* mQueueLock;
    AGPQueueNumber mQueueId;
    // Created, running or stopping; a stop that comes before the thread starts is not lost.
    enum RunState { Created, Running, Stopping };
    std::atomic<int> mRunning;
    std::uint32_t mPushCounter;
    std::uint32_t mImageCounter;
};
