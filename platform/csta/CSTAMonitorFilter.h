// Which events a call-control monitor leaves out.
#pragma once

#include <optional>

// true filters events out. A group filter covers the events of its group that have no setting
// of their own: Established and ConnectionCleared belong to call control, so call control
// filtered with both of them set to false reports exactly those two. The other groups hold no
// events the emulated call control reports. By default everything is reported.
class CSTAMonitorFilter {
public:
    void setCallControlFilter(bool filter) { mCallControl = filter; }
    void setCallAssociatedFilter(bool filter) { mCallAssociated = filter; }
    void setPhysicalDeviceFilter(bool filter) { mPhysicalDevice = filter; }
    void setLogicalDeviceFilter(bool filter) { mLogicalDevice = filter; }
    void setVendorSpecificFilter(bool filter) { mVendorSpecific = filter; }
    void setSystemFilter(bool filter) { mSystem = filter; }
    void setEstablishedFilter(bool filter) { mEstablished = filter; }
    void setConnectionClearedFilter(bool filter) { mConnectionCleared = filter; }

    bool filtersEstablished() const { return mEstablished.value_or(mCallControl); }
    bool filtersConnectionCleared() const { return mConnectionCleared.value_or(mCallControl); }
    bool filtersCallAssociated() const { return mCallAssociated; }
    bool filtersPhysicalDevice() const { return mPhysicalDevice; }
    bool filtersLogicalDevice() const { return mLogicalDevice; }
    bool filtersVendorSpecific() const { return mVendorSpecific; }
    bool filtersSystem() const { return mSystem; }

private:
    bool mCallControl = false;
    bool mCallAssociated = false;
    bool mPhysicalDevice = false;
    bool mLogicalDevice = false;
    bool mVendorSpecific = false;
    bool mSystem = false;
    std::optional<bool> mEstablished;
    std::optional<bool> mConnectionCleared;
};
