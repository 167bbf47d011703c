// Tests of messages and the message queues: limits, order, routing and stopping.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <thread>

#include "AGPCommonBase.h"
#include "AGPGUIHandler.h"
#include "AGPMessage.h"
#include "AGPMessageQueue.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectMap.h"
#include "AGPPhoneletManager.h"
#include "AGPServerConnection.h"
#include "AGPXMLParser.h"
#include "logging/LogCapture.h"
#include "threads/Threader.h"

namespace {

AGPMessage makeMessage(AGPMessage::MessageType type, std::uint32_t id = 0) {
    AGPMessage message(type, "http://server/" + std::to_string(id));
    message.id = id;
    return message;
}

// Takes messages in queue order and records them instead of processing them. While held, its
// thread takes nothing.
class RecordingQueue : public AGPMessageQueue {
public:
    explicit RecordingQueue(AGPQueueNumber id = 0, bool held = false) : AGPMessageQueue(id), mHeld(held) {}
    bool getMsgFromQ(AGPMessage& msg) override {
        {
            std::unique_lock<std::mutex> lock(mMutex);
            mGate.wait(lock, [this] { return !mHeld; });
        }
        if (!AGPMessageQueue::getMsgFromQ(msg)) {
            return false;
        }
        std::lock_guard<std::mutex> lock(mMutex);
        mTaken.push_back(msg);
        return false; // recorded, not processed
    }
    std::vector<AGPMessage> taken() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mTaken;
    }

    void hold(bool held) {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            mHeld = held;
        }
        mGate.notify_all();
    }

private:
    std::mutex mMutex;
    std::condition_variable mGate;
    bool mHeld;
    std::vector<AGPMessage> mTaken;
};

class RecordingQueueHandler : public AGPMessageQueueHandler {
public:
    AGPMessageQueue* createMessageQueue(messageQueueId id) override { return new RecordingQueue(id, true); }
    RecordingQueue& queue(messageQueueId id) { return *static_cast<RecordingQueue*>(getMessageQueue(id)); }
};

// An element that counts the commands that reach it.
class CountingElement : public AGPCommonBase {
public:
    CountingElement() { registerElement(); }
    ~CountingElement() override { unregisterElement(); }
    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppForm; }
    void processMessage(AGPMessage&) override { ++mProcessed; }
    std::atomic<int> mProcessed{0};
};

template <typename Condition> bool waitFor(Condition condition) {
    for (int i = 0; i < 500 && !condition(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}

} // namespace

TEST(AGPMessage, PrioritiesNamesAndOrder) {
    EXPECT_EQ(AGPMessage(AGPMessage::UrlRequest_Display_Error, "x").priority, AGPMessage::High);
    EXPECT_EQ(AGPMessage(AGPMessage::KeyPressed, "").priority, AGPMessage::High);
    EXPECT_EQ(AGPMessage(AGPMessage::Unknown, "").priority, AGPMessage::Low);
    EXPECT_EQ(AGPMessage(AGPMessage::UrlRequest_Image, "u").priority, AGPMessage::Mid);
    EXPECT_EQ(AGPMessage(static_cast<AGPMessage::MessageType>(-3), "").priority, AGPMessage::Mid);

    EXPECT_EQ(AGPMessage::translateCommandType(19), AGPMessage::Command_Tab_Forward);
    EXPECT_EQ(AGPMessage::translateCommandType(0), AGPMessage::Command_Error);
    EXPECT_EQ(AGPMessage::translateCommandType(20), AGPMessage::Unknown);
    for (int unnamed : {13, 38, 39, 41, -1}) {
        EXPECT_EQ(AGPMessage::getMessageTypeString(static_cast<AGPMessage::MessageType>(unnamed)), "Unknown");
    }
    EXPECT_EQ(AGPMessage::getMessageTypeString(AGPMessage::Command_Item_state_changed),
              "Command_Item_state_changed");
    AGPMessage odd;
    odd.priority = 7;
    EXPECT_EQ(odd.getMessagePrioString(), "Unknown");

    AGPMessage first = makeMessage(AGPMessage::UrlRequest_XML, 5);
    AGPMessage second = makeMessage(AGPMessage::UrlRequest_XML, 6);
    EXPECT_TRUE(second < first) << "the older message is greater and leaves first";
    AGPMessage low = makeMessage(AGPMessage::Unknown, 1);
    EXPECT_TRUE(low < second) << "a Low message never overtakes a Mid one";
}

TEST(AGPMessageQueue, AdmissionLimitsPerKind) {
    LogCapture log(6);
    AGPMessageQueue queue(0);
    for (std::uint32_t i = 0; i < 20; ++i) {
        AGPMessage push = makeMessage(AGPMessage::UrlRequest_XML_push_queue, i);
        ASSERT_TRUE(queue.addToMsgQ(push));
    }
    AGPMessage extraPush = makeMessage(AGPMessage::UrlRequest_XML_push_force, 99);
    EXPECT_FALSE(queue.addToMsgQ(extraPush));
    EXPECT_TRUE(log.contains("AGPMessageQueue", 6,
                             "Message type: UrlRequest_XML_push_force, size of queue: 20, push counter: 20"));
    for (std::uint32_t i = 0; i < 500; ++i) {
        AGPMessage image = makeMessage(AGPMessage::UrlRequest_Image, i);
        ASSERT_TRUE(queue.addToMsgQ(image));
    }
    AGPMessage extraImage = makeMessage(AGPMessage::UrlRequest_Image);
    EXPECT_FALSE(queue.addToMsgQ(extraImage));
    for (std::uint32_t i = 0; i < 100; ++i) {
        AGPMessage request = makeMessage(AGPMessage::UrlRequest_XML, i);
        ASSERT_TRUE(queue.addToMsgQ(request)) << "pushes and images do not count against ordinary messages";
    }
    AGPMessage extraRequest = makeMessage(AGPMessage::Command_OK);
    EXPECT_FALSE(queue.addToMsgQ(extraRequest));
    EXPECT_EQ(queue.pendingMessages(), 620u);
    queue.flushMessageQueue();
    EXPECT_EQ(queue.pendingMessages(), 0u);
    EXPECT_TRUE(queue.addToMsgQ(extraPush)) << "flushing resets the counters";
}

TEST(AGPMessageQueue, TakesHighestPriorityFirstThenOldest) {
    RecordingQueue queue;
    for (std::uint32_t id = 1; id <= 10; ++id) {
        AGPMessage mid = makeMessage(AGPMessage::UrlRequest_XML, id);
        queue.addToMsgQ(mid);
    }
    AGPMessage high = makeMessage(AGPMessage::UrlRequest_Display_Error, 11);
    queue.addToMsgQ(high);
    AGPMessage low = makeMessage(AGPMessage::Unknown, 0);
    queue.addToMsgQ(low);

    Threader threader;
    unsigned long thread = 0;
    ASSERT_NE(threader.start(&thread, &queue, "", 1, 0), 0);
    ASSERT_TRUE(waitFor([&] { return queue.taken().size() == 12; }));
    queue.stopReadingQueue();
    threader.wait(thread);

    const std::vector<AGPMessage> taken = queue.taken();
    EXPECT_EQ(taken.front().id, 11u);
    for (std::uint32_t i = 1; i <= 10; ++i) {
        EXPECT_EQ(taken[i].id, i);
    }
    EXPECT_EQ(taken.back().type, AGPMessage::Unknown);
}

TEST(AGPMessageQueue, StopsWithPendingMessagesEvenBeforeItRuns) {
    RecordingQueue queue;
    queue.stopReadingQueue(); // before the thread has started
    AGPMessage request = makeMessage(AGPMessage::UrlRequest_XML, 1);
    queue.addToMsgQ(request);
    Threader threader;
    unsigned long thread = 0;
    ASSERT_NE(threader.start(&thread, &queue, "", 1, 0), 0);
    threader.wait(thread);
    EXPECT_TRUE(queue.taken().empty());
    EXPECT_EQ(queue.pendingMessages(), 0u) << "the ending thread discards what was pending";
}

TEST(AGPMessageQueueHandler, RoutesToTheElementsQueueAndRefusesUnknownQueues) {
    LogCapture log(6);
    {
        AGPPhoneletManager::getAGPServerConnection();
        AGPPhoneletManager::getAGPXMLParser();
        AGPPhoneletManager::getAGPGUIHandler();
        AGPMessageQueueHandler* handler = AGPPhoneletManager::getAGPMessageQueueHandler();
        ASSERT_TRUE(handler->startAGPMessageQueueHandler(3));
        EXPECT_TRUE(log.contains("AGPMessageQueueHandler", 5, "Creating 3 messageQueues"));

        CountingElement element;
        element.setQueueID(2);
        AGPMessage command(AGPMessage::Command_OK, "");
        command.agpId = element.getAGPObjectID();
        EXPECT_TRUE(handler->addToMessageQueue(command, 0));
        EXPECT_TRUE(waitFor([&] { return element.mProcessed == 1; }));
        EXPECT_TRUE(log.contains("AGPMessageQueue", 6,
                                 "Process message queueId: 2, type: Command_OK, prio: Mid, id:0, AGPID:" +
                                     std::to_string(element.getAGPObjectID()) +
                                     ", AGPElem: ti_IppForm from AGP Message Queue\nMessage content: "));

        AGPMessage stray(AGPMessage::UrlRequest_XML, "http://x/");
        EXPECT_FALSE(handler->addToMessageQueue(stray, 3));
        EXPECT_TRUE(log.contains("AGPMessageQueueHandler", 5, "Invalid queueId 3, message discarded"));

        AGPMessage keyPress(AGPMessage::KeyPressed, "");
        handler->addToMessageQueue(keyPress, 1);
        EXPECT_TRUE(
            waitFor([&] { return log.contains("AGPMessageQueue", 5, "Unsupported command received 12\n"); }));
        AGPPhoneletManager::shutdownPhonelet(); // joins the queue threads
    }
    EXPECT_TRUE(log.contains("AGPMessageQueueHandler", 5, "Destroy AGPMessageQueueHandler"));
}

TEST(AGPMessageQueueHandler, StartRequiresTheServicesItFeeds) {
    LogCapture log(2);
    AGPMessageQueueHandler handler;
    EXPECT_FALSE(handler.startAGPMessageQueueHandler(1));
    EXPECT_TRUE(log.contains("AGPMessageQueueHandler", 2,
                             "AGPMessageQueueHandler startup failed: can't find AGPServerConnection"));
    AGPPhoneletManager::getAGPServerConnection();
    EXPECT_FALSE(handler.startAGPMessageQueueHandler(1));
    EXPECT_TRUE(log.contains("AGPMessageQueueHandler", 2,
                             "AGPMessageQueueHandler startup failed: can't find AGPXMLParser"));
    AGPPhoneletManager::shutdownPhonelet();
}

TEST(AGPMessageQueueHandler, ManyProducersLoseNothingWithinTheLimits) {
    // Made before the producers start, as the phonelet's start-up does: the registry's services are
    // created on first use without a lock.
    AGPPhoneletManager::getAGPObjectMap();
    AGPPhoneletManager::getAGPServerConnection();
    AGPPhoneletManager::getAGPXMLParser();
    AGPPhoneletManager::getAGPGUIHandler();
    {
        RecordingQueueHandler handler;
        ASSERT_TRUE(handler.startAGPMessageQueueHandler(1));
        RecordingQueue& queue = handler.queue(0);

        // Eight producers at once; what they were told was queued, by content, with its stamped id.
        std::mutex acceptedLock;
        std::map<std::string, std::uint32_t> accepted;
        std::map<int, int> acceptedKinds;
        auto produce = [&](const std::string& round, int count) {
            std::vector<std::thread> producers;
            for (int producer = 0; producer < 8; ++producer) {
                producers.emplace_back([&, producer] {
                    for (int i = 0; i < count; ++i) {
                        const AGPMessage::MessageType type = i % 8 == 0
                                                                 ? AGPMessage::UrlRequest_XML_push_queue
                                                             : i % 2 == 0 ? AGPMessage::UrlRequest_Image
                                                                          : AGPMessage::Command_OK;
                        AGPMessage message(type, round + std::to_string(producer) + "/" + std::to_string(i));
                        if (handler.addToMessageQueue(message)) {
                            std::lock_guard<std::mutex> lock(acceptedLock);
                            EXPECT_TRUE(accepted.emplace(message.content, message.id).second);
                            ++acceptedKinds[type];
                        }
                    }
                });
            }
            for (std::thread& producer : producers) {
                producer.join(); // a full queue that blocked its producer would hang here
            }
        };

        // With the queue's thread held from the start, the queue fills to exactly its three limits, refusing
        // the rest.
        produce("full ", 200);
        EXPECT_EQ(acceptedKinds[AGPMessage::UrlRequest_XML_push_queue], 20);
        EXPECT_EQ(acceptedKinds[AGPMessage::UrlRequest_Image], 500);
        EXPECT_EQ(acceptedKinds[AGPMessage::Command_OK], 100);
        EXPECT_EQ(queue.pendingMessages(), 620u);
        queue.hold(false);

        // And while the thread takes them, nothing accepted is lost or taken twice.
        produce("running ", 400);
        ASSERT_TRUE(waitFor([&] { return queue.taken().size() >= accepted.size(); }));
        const std::vector<AGPMessage> taken = queue.taken();
        EXPECT_EQ(taken.size(), accepted.size());
        std::set<std::uint32_t> ids;
        for (const AGPMessage& message : taken) {
            EXPECT_TRUE(ids.insert(message.id).second) << "id " << message.id << " taken twice";
            auto found = accepted.find(message.content);
            ASSERT_NE(found, accepted.end()) << message.content << " was refused, yet taken";
            EXPECT_EQ(found->second, message.id);
            accepted.erase(found);
        }
        EXPECT_TRUE(accepted.empty()) << accepted.size() << " accepted messages were lost";

        // The counters came back to zero: exactly a full set of pushes is admitted again. (The thread
        // takes one last message and then waits at the gate, so that it takes none of the pushes.)
        queue.hold(true);
        AGPMessage last(AGPMessage::Command_OK, "last");
        ASSERT_TRUE(handler.addToMessageQueue(last));
        ASSERT_TRUE(waitFor([&] { return queue.taken().size() == taken.size() + 1; }));
        for (int i = 0; i < 21; ++i) {
            AGPMessage push(AGPMessage::UrlRequest_XML_push_force, "");
            EXPECT_EQ(handler.addToMessageQueue(push), i < 20) << i;
        }
        queue.hold(false);
    }
    AGPPhoneletManager::shutdownPhonelet();
}
