// The platform service that reads the phone's configuration database and reports its changes.
#pragma once

#include <string>

#include "services/PlatformService.h"

class ManageableData;
class MgmtAgentIfc;

class LocalMgmtIfc : public PlatformService {
public:
    static constexpr const char* SERVICE_NAME = "LocalMgmtIfc";
    // Subscription mode: notify on every change of the key's value. The only mode there is;
    // subscribe and unsubscribe refuse any other.
    static constexpr int NOTIFY_ON_CHANGE = 1;

    // Fills the value of every root id of `query`, in the order they were added; a key without
    // value reads as "". False only when the database cannot be read.
    virtual bool read(ManageableData& query) = 0;
    // After it, every change of `key` reaches observer->manageableDataChanged on the event loop.
    // Subscribing twice is harmless. False for a null observer, an empty key or another mode.
    virtual bool subscribe(const std::string& key, MgmtAgentIfc* observer, int mode) = 0;
    // Ends a subscription; no notification of `key` starts for the observer afterwards.
    // False when there was none.
    virtual bool unsubscribe(const std::string& key, MgmtAgentIfc* observer, int mode) = 0;
};
