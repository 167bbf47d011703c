// One prioritised message queue with its own thread, which processes the messages one at a time.
#include "AGPMessageQueue.h"

#define AGP_LOG_MODULE "AGPMessageQueue"
#define AGP_LOG_SOURCE "./src/AGPMessageQueue.cpp"

#include <cstdio>

#include "AGPCommonBase.h"
#include "AGPGUIHandler.h"
#include "AGPImage.h"
#include "AGPLog.h"
#include "AGPObjectMap.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "AGPRemoteTraceHandler.h"
#include "AGPServerConnection.h"
#include "AGPXMLParser.h"
#include "http/HttpServiceHeaders.h"
#include "threads/CriticalSection.h"

AGPMessageQueue::AGPMessageQueue(AGPQueueNumber id)
    : mMsgAvailable(new Semaphore(0, -1, false)), mQueueLock(new Semaphore(1, 1, false)), mQueueId(id),
      mRunning(Created), mPushCounter(0), mImageCounter(0) {}

AGPMessageQueue::~AGPMessageQueue() {
    delete mMsgAvailable;
    delete mQueueLock;
}

bool AGPMessageQueue::pushMsgCheck(AGPMessage& msg) {
    return msg.type >= AGPMessage::UrlRequest_XML_push_active &&
           msg.type <= AGPMessage::UrlRequest_XML_push_force;
}

bool AGPMessageQueue::imageMsgCheck(AGPMessage& msg) {
    return msg.type == AGPMessage::UrlRequest_Image;
}

bool AGPMessageQueue::addToMsgQ(AGPMessage& msg) {
    mQueueLock->take(-1);
    const bool queued = admit(msg);
    mQueueLock->give();
    if (queued) {
        mMsgAvailable->give();
    }
    return queued;
}

// Called under mQueueLock: the limit test and the push form one step.
bool AGPMessageQueue::admit(AGPMessage& msg) {
    const int pending = static_cast<int>(mQueue.size());
    if (pushMsgCheck(msg)) {
        if (mPushCounter >= mMaxPushReq) {
            AGP_LOG(6, "Message type: %s, size of queue: %d, push counter: %d",
                    msg.getMessageTypeString().c_str(), pending, static_cast<int>(mPushCounter));
            return false;
        }
        ++mPushCounter;
    } else if (imageMsgCheck(msg)) {
        if (mImageCounter >= mMaxImageReq) {
            AGP_LOG(6, "Message type: %s, size of queue: %d, image counter: %d",
                    msg.getMessageTypeString().c_str(), pending, static_cast<int>(mImageCounter));
            return false;
        }
        ++mImageCounter;
    } else if (mQueue.size() - mImageCounter - mPushCounter >= mMaxSize) {
        return false;
    }
    mQueue.push(msg);
    return true;
}

bool AGPMessageQueue::getMsgFromQ(AGPMessage& msg) {
    mMsgAvailable->take(-1);
    if (mRunning != Running || AGPPhoneletManager::isPhoneletShuttingDown()) {
        flushMessageQueue();
        return false;
    }
    CriticalSection lock(mQueueLock);
    if (!mQueue.empty()) {
        msg = mQueue.top();
        if (pushMsgCheck(msg)) {
            --mPushCounter;
        } else if (imageMsgCheck(msg)) {
            --mImageCounter;
        }
        mQueue.pop();
    }
    return true;
}

void AGPMessageQueue::flushMessageQueue() {
    CriticalSection lock(mQueueLock);
    while (!mQueue.empty()) {
        mQueue.pop();
    }
    mPushCounter = 0;
    mImageCounter = 0;
}

void AGPMessageQueue::stopReadingQueue() {
    mRunning = Stopping;
    mMsgAvailable->give();
}

size_t AGPMessageQueue::pendingMessages() {
    CriticalSection lock(mQueueLock);
    return mQueue.size();
}

void AGPMessageQueue::run() {
    int created = Created;
    mRunning.compare_exchange_strong(created, Running);
    AGP_LOG(5, "Starting AGP message queue Id: %d", mQueueId);
    AGPMessage msg;
    while (mRunning == Running && !AGPPhoneletManager::isPhoneletShuttingDown()) {
        if (getMsgFromQ(msg)) {
            processMessage(msg);
        }
    }
    // A queue that ends keeps nothing, even when it was stopped before its thread ran.
    flushMessageQueue();
}

void AGPMessageQueue::processMessage(AGPMessage& msg) {
    if (msg.task) {
        msg.task();
        return;
    }
    if (AGPPhoneletManager::findAGPServerConnection() == nullptr) {
        AGP_LOG(2, "Can't get AGPServerConnection");
        return;
    }
    std::string elementName = AGPPhoneletManager::getAGPObjectMap()->getTypeNameOf(msg.agpId);
    if (elementName.empty()) {
        elementName = "--";
    }
    AGP_LOG(6,
            "Process message queueId: %d, type: %s, prio: %s, id:%d, AGPID:%lu, AGPElem: %s from AGP Message "
            "Queue\nMessage content: %s",
            mQueueId, msg.getMessageTypeString().c_str(), msg.getMessagePrioString().c_str(),
            static_cast<int>(msg.id), static_cast<unsigned long>(msg.agpId), elementName.c_str(),
            msg.content.c_str());

    switch (msg.type) {
    case AGPMessage::UrlRequest_XML:
    case AGPMessage::UrlRequest_XML_cache_expired_back:
    case AGPMessage::UrlRequest_XML_cache_expired_screenId:
    case AGPMessage::UrlRequest_XML_push_active:
    case AGPMessage::UrlRequest_XML_push_queue:
    case AGPMessage::UrlRequest_XML_push_indicate:
    case AGPMessage::UrlRequest_XML_push_force:
        processDocumentRequest(msg);
        break;
    case AGPMessage::UrlRequest_Exit:
        processExitRequest(msg);
        break;
    case AGPMessage::UrlRequest_Remote_Trace: {
        AGPRemoteTraceHandler* trace = AGPPhoneletManager::findAGPRemoteTraceHandler();
        if (trace != nullptr) {
            trace->remoteTrace(msg.content, msg.data);
        }
        break;
    }
    case AGPMessage::UrlRequest_Image:
        processImageRequest(msg);
        break;
    case AGPMessage::UrlRequest_Display_Error:
        processErrorDocument(msg);
        break;
    case AGPMessage::Command_Tabbar_Active:
    case AGPMessage::Command_Tabbar_Inactive:
    case AGPMessage::Command_Tab_Back:
    case AGPMessage::Command_Tab_Forward:
        processTabCommand(msg);
        break;
    default:
        if ((msg.type >= AGPMessage::Command_Error && msg.type <= AGPMessage::Command_Pause) ||
            (msg.type >= AGPMessage::Command_Action && msg.type <= AGPMessage::Command_Item_state_changed)) {
            processCommand(msg);
        } else {
            AGP_LOG(5, "Unsupported command received %d\n", static_cast<int>(msg.type));
        }
    }
}

void AGPMessageQueue::traceAndReport(const std::string& text) {
    AGP_LOG(5, "%s", text.c_str());
    std::printf("%s\n", text.c_str());
    AGPRemoteTraceHandler* trace = AGPPhoneletManager::findAGPRemoteTraceHandler();
    if (trace != nullptr) {
        trace->remoteTrace(text);
    }
}

void AGPMessageQueue::processDocumentRequest(AGPMessage& msg) {
    if (AGPPhoneletManager::isErrorDocumentShown()) {
        return;
    }
    AGPServerConnection* connection = AGPPhoneletManager::findAGPServerConnection();
    AGPRemoteTraceHandler* trace = AGPPhoneletManager::findAGPRemoteTraceHandler();
    char* data = nullptr;
    unsigned int size = 0;
    HttpServiceHeaders headers;
    std::string errorText;
    if (connection->getHttpData(msg.content, AGPServerConnection::XML_DOCUMENT, data, size, headers,
                                errorText) == 0) {
        if (trace != nullptr) {
            trace->remoteTrace(errorText);
        }
        AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
        if (phonelet != nullptr) {
            phonelet->displayErrorRequest("xml.app.error.network", errorText);
        }
    } else if (data != nullptr && size > 0) {
        std::string document(data, size);
        // One copy of the body at a time: a large document would otherwise be held twice while
        // it is parsed, and a third time for a trace nobody asked for.
        delete[] data;
        data = nullptr;
        if (trace != nullptr && trace->isEnabled()) {
            trace->remoteTrace("Phone received XML data:\n\n" + document);
        }
        processReceivedDocument(msg, document, headers);
    }
    delete[] data;
}

void AGPMessageQueue::processReceivedDocument(AGPMessage& msg, std::string& document,
                                              HttpServiceHeaders& headers) {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (msg.type == AGPMessage::UrlRequest_XML_push_force && gui != nullptr) {
        gui->resetFocusCounter();
    }
    AGPCommonBase* root = nullptr;
    if (!AGPPhoneletManager::getAGPXMLParser()->parseXMLData(document, root)) {
        traceAndReport("Parsing of received XML data failed");
        return;
    }
    const long validity = AGPServerConnection::getCacheValidityFromHeaders(headers);
    if (gui == nullptr ||
        !gui->processXmlTreeObject(root, mQueueId, msg.type, msg.content, validity, msg.bringToFront)) {
        traceAndReport("Processing of XML tree object failed");
        if (root != nullptr) {
            AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(root->getAGPObjectID());
        }
    }
}

void AGPMessageQueue::processExitRequest(AGPMessage& msg) {
    if (!msg.content.empty()) {
        char* data = nullptr;
        unsigned int size = 0;
        HttpServiceHeaders headers;
        std::string errorText;
        AGPPhoneletManager::findAGPServerConnection()->getHttpData(
            msg.content, AGPServerConnection::XML_DOCUMENT, data, size, headers, errorText);
        delete[] data;
        AGP_LOG(5, "XML application received response to Exit request and will end");
    } else {
        AGP_LOG(5, "XML application will end immediately");
    }
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui != nullptr) {
        gui->stopPhonelet();
    }
}

void AGPMessageQueue::processErrorDocument(AGPMessage& msg) {
    AGPCommonBase* root = nullptr;
    if (!AGPPhoneletManager::getAGPXMLParser()->parseXMLData(msg.content, root)) {
        return;
    }
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui == nullptr ||
        !gui->processXmlTreeObject(root, mQueueId, msg.type, "", AGPServerConnection::CACHE_TIMEVALID_FOREVER,
                                   msg.bringToFront)) {
        if (root != nullptr) {
            AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(root->getAGPObjectID());
        }
    }
}

void AGPMessageQueue::processImageRequest(AGPMessage& msg) {
    if (AGPPhoneletManager::isErrorDocumentShown()) {
        return;
    }
    // Picture elements download themselves; a message for a deleted element is dropped here.
    AGPCommonBase* element = AGPPhoneletManager::getAGPObjectMap()->getAGPObject(msg.agpId);
    if (element == nullptr || element->getAGPObjectType() != AGPObjectTypeInfo::ti_Image) {
        return;
    }
    static_cast<AGPImage*>(element)->downloadImage(msg.content, true);
}

void AGPMessageQueue::processCommand(AGPMessage& msg) {
    if (!msg.widgetsAlive()) {
        // The widget or command went with its screen after the key was pressed.
        AGP_LOG(5, "Command for a deleted widget dropped, AGPID=%lu", static_cast<unsigned long>(msg.agpId));
        return;
    }
    AGPCommonBase* element = AGPPhoneletManager::getAGPObjectMap()->getAGPObject(msg.agpId);
    if (element != nullptr) {
        element->processMessage(msg);
    }
}

void AGPMessageQueue::processTabCommand(AGPMessage& msg) {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    if (gui == nullptr) {
        return;
    }
    switch (msg.type) {
    case AGPMessage::Command_Tab_Back:
        gui->tab(-1);
        break;
    case AGPMessage::Command_Tab_Forward:
        gui->tab(1);
        break;
    default:
        gui->phoneletTabStatusChange(msg, mQueueId);
    }
}
