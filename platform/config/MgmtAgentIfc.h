// Receiver of configuration changes from the phone's local management service.
#pragma once

class ManageableData;

// Subscribed per key through LocalMgmtIfc. Notifications arrive on the platform's event loop.
class MgmtAgentIfc {
public:
    virtual ~MgmtAgentIfc() = default;

    // `data` holds the changed root ids that this agent subscribed to, with their new values;
    // it lives only for the call.
    virtual void manageableDataChanged(ManageableData& data) = 0;
    // Management asks the agent to take, hand out or reset data it holds itself. Agents that
    // hold none keep these defaults.
    virtual bool setData(ManageableData& /*data*/) { return false; }
    virtual bool getData(ManageableData& /*data*/) { return false; }
    virtual bool resetUserData() { return false; }
};
