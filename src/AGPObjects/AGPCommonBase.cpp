// Base class of every document element: tree links, content, registry identifier, life cycle.
#include "AGPCommonBase.h"

#include <algorithm>

#include "AGPDataObserver.h"
#include "AGPMessage.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectMap.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"

AGPCommonBase::AGPCommonBase() : mAGPId(0), mQueueID(0), mParent(nullptr) {}

AGPCommonBase::~AGPCommonBase() = default;

bool AGPCommonBase::addChild(AGPCommonBase&) {
    return false;
}

bool AGPCommonBase::addAttribute(std::string&, std::string&) {
    return false;
}

bool AGPCommonBase::addContent(std::string& text) {
    mContent += text;
    return true;
}

std::string AGPCommonBase::getContent() {
    return mContent;
}

bool AGPCommonBase::isValid() {
    return false;
}

void AGPCommonBase::initializeElement() {}

void AGPCommonBase::processElement() {}

void AGPCommonBase::processMessage(AGPMessage&) {}

void AGPCommonBase::cleanup() {}

void AGPCommonBase::hideElement() {}

void AGPCommonBase::reDisplayElement() {}

void AGPCommonBase::reDisplayElement2ndRound() {}

// The text goes through this element's own queue, so that it is sent in order with the tab's work.
void AGPCommonBase::remoteTrace(const std::string& text) {
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    AGPMessageQueueHandler* queues = AGPPhoneletManager::findAGPMessageQueueHandler();
    if (phonelet == nullptr || queues == nullptr) {
        return;
    }
    const std::string url = phonelet->getApplicationURL(AGPPhonelet::REMOTE_TRACE_URL, "", "", "");
    if (url.empty()) {
        return;
    }
    AGPMessage message(AGPMessage::UrlRequest_Remote_Trace, url);
    message.data = text;
    queues->addToMessageQueue(message, mQueueID);
}

AGPCommonBase* AGPCommonBase::getRootElement() {
    AGPCommonBase* element = this;
    while (element->mParent != nullptr) {
        element = element->mParent;
    }
    return element;
}

AGPCommonBase* AGPCommonBase::getChildByType(AGPObjectType type) {
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == type) {
            return child;
        }
    }
    return nullptr;
}

bool AGPCommonBase::removeChild(AGPCommonBase* child) {
    auto found = std::find(mChildren.begin(), mChildren.end(), child);
    if (child == nullptr || found == mChildren.end()) {
        return false;
    }
    mChildren.erase(found);
    child->mParent = nullptr;
    return true;
}

void AGPCommonBase::getChildrenByType(AGPObjectType type, std::vector<AGPCommonBase*>& out) {
    out.clear();
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() == type) {
            out.push_back(child);
        }
    }
}

int AGPCommonBase::indexAmongChildrenOfType(AGPObjectType type, AGPId id) {
    int index = 0;
    for (AGPCommonBase* child : mChildren) {
        if (child->getAGPObjectType() != type) {
            continue;
        }
        if (child->getAGPObjectID() == id) {
            return index;
        }
        ++index;
    }
    return -1;
}

bool AGPCommonBase::createTreeExplorationVector(AGPCommonBase* root, std::vector<AGPCommonBase*>& out) {
    if (root == nullptr) {
        out.clear();
        return false;
    }
    // An explicit stack, so that a deeply nested document cannot exhaust the thread's stack.
    std::vector<std::pair<AGPCommonBase*, bool>> stack;
    stack.emplace_back(root, false);
    while (!stack.empty()) {
        auto& top = stack.back();
        if (top.second) {
            out.push_back(top.first);
            stack.pop_back();
            continue;
        }
        top.second = true;
        const std::vector<AGPCommonBase*>& children = top.first->mChildren;
        for (auto child = children.rbegin(); child != children.rend(); ++child) {
            stack.emplace_back(*child, false);
        }
    }
    return true;
}

void AGPCommonBase::addScreenFocusListener(AGPScreenFocusListenerIfc* listener) {
    // Iterative walk up the ancestors, stopping at the first one that holds the listener already.
    for (AGPCommonBase* element = this; element != nullptr; element = element->mParent) {
        auto& listeners = element->mScreenFocusListeners;
        if (std::find(listeners.begin(), listeners.end(), listener) != listeners.end()) {
            return;
        }
        listeners.push_back(listener);
    }
}

void AGPCommonBase::removeScreenFocusListener(AGPScreenFocusListenerIfc* listener) {
    for (AGPCommonBase* element = this; element != nullptr; element = element->mParent) {
        auto& listeners = element->mScreenFocusListeners;
        auto found = std::find(listeners.begin(), listeners.end(), listener);
        if (found != listeners.end()) {
            listeners.erase(found);
        }
    }
}

void AGPCommonBase::notifyScreenGainedFocus() {
    for (AGPScreenFocusListenerIfc* listener : mScreenFocusListeners) {
        listener->screenGainedFocus();
    }
}

void AGPCommonBase::notifyScreenLostFocus() {
    for (AGPScreenFocusListenerIfc* listener : mScreenFocusListeners) {
        listener->screenLostFocus();
    }
}

// The remote-trace setting lives in the application configuration; without a configuration
// reader remote trace is off.
bool AGPCommonBase::isRemoteTrace() {
    AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
    return configuration != nullptr && configuration->isRemoteDebugEnabled();
}

void AGPCommonBase::commandRemoteTrace(const std::string& prefix, const AGPMessage& message) {
    remoteTrace(prefix + message.getMessageTypeString() + " , label=" + message.label + "\n");
}

void AGPCommonBase::registerElement() {
    mAGPId = AGPPhoneletManager::getAGPObjectMap()->addAGPObject(this);
    mRegistered = mAGPId != 0;
}

void AGPCommonBase::unregisterElement() {
    if (mRegistered) {
        mRegistered = false;
        AGPPhoneletManager::getAGPObjectMap()->removeAGPObject(mAGPId);
    }
}

bool AGPCommonBase::addCountedChild(AGPChildCount& count, AGPCommonBase& child) {
    if (!count.hasRoom()) {
        return false;
    }
    if (mChildren.empty()) {
        mChildren.reserve(4); // most elements have a few children: one allocation, not three
    }
    mChildren.push_back(&child);
    ++count.mCount;
    return true;
}
