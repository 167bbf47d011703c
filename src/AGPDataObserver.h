// The configuration record of the running XML application and the phone-wide settings it uses.
#pragma once

#include <mutex>
#include <string>
#include <vector>

class LocalMgmtIfc;
class ManageableData;

// Values are kept as the configuration database delivers them ("" for a key without value).
// Written at start-up and by configuration changes on the platform's thread, read by every queue
// thread: readers get copies, taken under a short lock, so a value is always seen whole.
class AGPDataObserver {
public:
    AGPDataObserver();
    virtual ~AGPDataObserver();
    AGPDataObserver(const AGPDataObserver&) = delete;
    AGPDataObserver& operator=(const AGPDataObserver&) = delete;

    bool startAGPDataObserver(LocalMgmtIfc* service);
    bool updateXMLApplicationConfiguration(const std::string& appName);
    bool getXMLApplicationIndex(const std::string& appName, std::string& index);
    bool getXMLApplicationData(const std::string& index);
    bool registerVexaDataObserver(const std::string& index);
    bool unregisterVexaDataObserver(const std::string& index);
    void processChangedManageableData(ManageableData& data);

    std::string getSubscriberNumber() const { return read(&AGPDataObserver::mPhoneNumber); }
    std::string getServerAddress() const { return read(&AGPDataObserver::mServerAddr); }
    std::string getLocalIPAddress() const;

    std::string getIndex() const { return read(&AGPDataObserver::mIndex); }
    std::string getDeviceType() const { return read(&AGPDataObserver::mDeviceType); }
    std::string getDisplayName() const { return read(&AGPDataObserver::mDisplayName); }
    std::string getAppName() const { return read(&AGPDataObserver::mAppName); }
    std::string getAppControlKey() const { return read(&AGPDataObserver::mAppControlKey); }
    std::string getServerPort() const { return read(&AGPDataObserver::mServerPort); }
    std::string getTransport() const { return read(&AGPDataObserver::mTransport); }
    std::string getProgramName() const { return read(&AGPDataObserver::mProgramName); }
    std::string getProxyEnabled() const { return read(&AGPDataObserver::mProxyEnabled); }
    std::string getRemoteDebug() const { return read(&AGPDataObserver::mRemoteDebug); }
    std::string getDebugProgName() const { return read(&AGPDataObserver::mDebugProgName); }
    std::string getNumTabs() const { return read(&AGPDataObserver::mNumTabs); }
    std::string getAppAllTabsStart() const { return read(&AGPDataObserver::mAppAllTabsStart); }
    std::string getTab1DisplayName() const { return read(&AGPDataObserver::mTab1DisplayName); }
    std::string getTab1AppName() const { return read(&AGPDataObserver::mTab1AppName); }
    std::string getTab2DisplayName() const { return read(&AGPDataObserver::mTab2DisplayName); }
    std::string getTab2AppName() const { return read(&AGPDataObserver::mTab2AppName); }
    std::string getTab3DisplayName() const { return read(&AGPDataObserver::mTab3DisplayName); }
    std::string getTab3AppName() const { return read(&AGPDataObserver::mTab3AppName); }
    std::string getProxyAddr() const { return read(&AGPDataObserver::mProxyAddr); }
    std::string getProxyPort() const { return read(&AGPDataObserver::mProxyPort); }
    std::string getE164Number() const { return read(&AGPDataObserver::mE164Number); }
    std::string getLanguage() const { return read(&AGPDataObserver::mLanguage); }
    void setLanguage(const std::string& language);
    std::string getRelatedDeviceType() const { return read(&AGPDataObserver::mRelatedDeviceType); }
    std::string getDisplaySkin() const { return read(&AGPDataObserver::mDisplaySkin); }
    std::string getVideoAllowed() const { return read(&AGPDataObserver::mVideoAllowed); }
    std::string getVideoOn() const { return read(&AGPDataObserver::mVideoOn); }

    bool isRemoteDebugEnabled() const { return getRemoteDebug() == "Enabled"; }

    // Model names and the skin value other parts compare the configuration with.
    static const char* const MODEL_VELTRIA_80;
    static const char* const MODEL_VELTRIA_60;
    static const char* const MODEL_BRISA_SET_55;
    static const char* const DISPLAY_SKIN_SECOND;

private:
    struct Field {
        const char* key;
        std::string AGPDataObserver::*member;
    };
    static const std::vector<Field>& applicationFields();
    static const std::vector<Field>& phoneFields();
    bool readFields(const std::vector<Field>& fields, const std::string& suffix);
    std::string read(const std::string AGPDataObserver::*member) const;
    void write(std::string AGPDataObserver::*member, const std::string& value);

    mutable std::mutex mValuesLock;

    LocalMgmtIfc* mVexaService;
    std::string mIndex;
    std::string mDeviceType;

    std::string mDisplayName;
    std::string mAppName;
    std::string mAppControlKey;
    std::string mServerAddr;
    std::string mServerPort;
    std::string mTransport;
    std::string mProgramName;
    std::string mAppAutoStart;
    std::string mProxyEnabled;
    std::string mRemoteDebug;
    std::string mDebugProgName;
    std::string mNumTabs;
    std::string mAppAllTabsStart;
    std::string mTab1DisplayName;
    std::string mTab1AppName;
    std::string mTab2DisplayName;
    std::string mTab2AppName;
    std::string mTab3DisplayName;
    std::string mTab3AppName;
    std::string mAppRestart;

    std::string mLocalIPv4;
    std::string mLocalIPv6;
    std::string mIPProtocolMode;
    std::string mProxyAddr;
    std::string mProxyPort;
    std::string mPhoneNumber;
    std::string mE164Number;
    std::string mLanguage;
    std::string mRelatedDeviceType;
    std::string mDisplaySkin;
    std::string mVideoAllowed;
    std::string mVideoOn;
};
