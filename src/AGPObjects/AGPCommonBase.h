// Base class of every document element: tree links, content, registry identifier, life cycle.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "AGPChildCount.h"
#include "AGPObjectTypeInfo.h"
#include "AGPScreenFocusListenerIfc.h"
#include "AGPTypes.h"

class AGPMessage;

class AGPCommonBase {
public:
    using AGPObjectType = AGPObjectTypeInfo::AGPObjectType;

    AGPCommonBase();
    // Frees the element's own fields only: children are deleted with the tree, and the most
    // derived destructor unregisters the element.
    virtual ~AGPCommonBase();

    virtual AGPObjectType getAGPObjectType() = 0;
    virtual bool addChild(AGPCommonBase& child);
    virtual bool addAttribute(std::string& name, std::string& value);
    virtual bool addContent(std::string& text);
    virtual std::string getContent();
    virtual bool isValid();
    virtual void initializeElement();
    virtual void processElement();
    virtual void processMessage(AGPMessage& message);
    virtual void cleanup();
    virtual void hideElement();
    virtual void reDisplayElement();
    virtual void reDisplayElement2ndRound();
    // Queues `text` for the remote-trace URL of the application.
    virtual void remoteTrace(const std::string& text);

    AGPCommonBase* getParent() { return mParent; }
    void setParent(AGPCommonBase* parent) { mParent = parent; }
    AGPCommonBase* getRootElement();
    AGPId getAGPObjectID() const { return mAGPId; }
    // Set by the queue thread that installs the element, read by the registry for other threads.
    AGPQueueNumber getQueueID() const { return mQueueID; }
    void setQueueID(AGPQueueNumber queue) { mQueueID = queue; }
    std::vector<AGPCommonBase*> getSequence() { return mChildren; }
    AGPCommonBase* getChildByType(AGPObjectType type);
    void getChildrenByType(AGPObjectType type, std::vector<AGPCommonBase*>& out);
    // The place of the child `id` among the children of `type` (0 for the first), -1 when it is
    // not one of them.
    int indexAmongChildrenOfType(AGPObjectType type, AGPId id);
    // Takes `child` out of the child list and clears its parent, so that it outlives this tree;
    // false when it is not a child of this element.
    bool removeChild(AGPCommonBase* child);

    // Lists the tree under `root` in post-order (children before their parent, `root` last).
    static bool createTreeExplorationVector(AGPCommonBase* root, std::vector<AGPCommonBase*>& out);

    void addScreenFocusListener(AGPScreenFocusListenerIfc* listener);
    void removeScreenFocusListener(AGPScreenFocusListenerIfc* listener);
    void notifyScreenGainedFocus();
    void notifyScreenLostFocus();

    bool isRemoteTrace();
    void commandRemoteTrace(const std::string& prefix, const AGPMessage& message);

    // The element factory: a new, registered element for an XML element name, or null.
    static AGPCommonBase* getInstanceFor(std::string& name);
    // The registry forgot this element ahead of deleting its tree (on the deleting thread, under
    // its lock): the destructor has nothing left to unregister.
    void markUnregistered() { mRegistered = false; }

protected:
    // Called by every constructor of a concrete element class, as its last step.
    void registerElement();
    // Called by the destructor of a concrete element class, as its first step.
    void unregisterElement();
    // Appends `child` when `count` has room; the shared rule of every container element.
    bool addCountedChild(AGPChildCount& count, AGPCommonBase& child);

    std::vector<AGPCommonBase*> mChildren;
    std::string mContent;
    AGPId mAGPId;
    bool mRegistered = false;
    std::atomic<AGPQueueNumber> mQueueID;
    AGPCommonBase* mParent;
    std::vector<AGPScreenFocusListenerIfc*> mScreenFocusListeners;
};
