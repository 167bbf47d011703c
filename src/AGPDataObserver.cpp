// The configuration record of the running XML application and the phone-wide settings it uses.
#include "AGPDataObserver.h"

#define AGP_LOG_MODULE "AGPDataObserver"
#define AGP_LOG_SOURCE "./src/AGPDataObserver.cpp"

#include "AGPLog.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "AGPServerConnection.h"
#include "config/LocalMgmtIfc.h"
#include "config/ManageableData.h"
#include "util/ClientUtils.h"

const char* const AGPDataObserver::MODEL_VELTRIA_80 = "Veltria 80";
const char* const AGPDataObserver::MODEL_VELTRIA_60 = "Veltria 60";
const char* const AGPDataObserver::MODEL_BRISA_SET_55 = "Brisa Set 55";
const char* const AGPDataObserver::DISPLAY_SKIN_SECOND = "1";

namespace {

const int kMaxApplications = 20;
const char* const kAppNamePrefix = "app-name-";

// Phone-wide keys to subscribe to, in subscription order.
const char* const kSubscribedKeys[] = {"ipaddress",
                                       "ipv6-ipaddress-global",
                                       "ip-protocol-mode",
                                       "http-proxy-port",
                                       "http-proxy-addr",
                                       "currentPhoneNumber",
                                       "e164",
                                       "language",
                                       "related-device-type",
                                       "display-skin",
                                       "video-allowed",
                                       "video-on"};

bool isAddressKey(const std::string& key) {
    return key == "ipaddress" || key == "ipv6-ipaddress-global" || key == "ip-protocol-mode";
}

MgmtAgentIfc* phoneletAgent() {
    return AGPPhoneletManager::getAGPPhonelet();
}

} // namespace

const std::vector<AGPDataObserver::Field>& AGPDataObserver::applicationFields() {
    static const std::vector<Field> fields = {
        {"display-name-", &AGPDataObserver::mDisplayName},
        {"app-name-", &AGPDataObserver::mAppName},
        {"app-control-key-", &AGPDataObserver::mAppControlKey},
        {"server-addr-", &AGPDataObserver::mServerAddr},
        {"server-port-", &AGPDataObserver::mServerPort},
        {"transport-", &AGPDataObserver::mTransport},
        {"program-name-", &AGPDataObserver::mProgramName},
        {"app-auto-start-", &AGPDataObserver::mAppAutoStart},
        {"proxy-enabled-", &AGPDataObserver::mProxyEnabled},
        {"remote-debug-", &AGPDataObserver::mRemoteDebug},
        {"debug-prog-name-", &AGPDataObserver::mDebugProgName},
        {"num-tabs-", &AGPDataObserver::mNumTabs},
        {"app-all-tabs-start-", &AGPDataObserver::mAppAllTabsStart},
        {"tab1-display-name-", &AGPDataObserver::mTab1DisplayName},
        {"tab1-app-name-", &AGPDataObserver::mTab1AppName},
        {"tab2-display-name-", &AGPDataObserver::mTab2DisplayName},
        {"tab2-app-name-", &AGPDataObserver::mTab2AppName},
        {"tab3-display-name-", &AGPDataObserver::mTab3DisplayName},
        {"tab3-app-name-", &AGPDataObserver::mTab3AppName},
        {"app-restart-", &AGPDataObserver::mAppRestart},
    };
    return fields;
}

const std::vector<AGPDataObserver::Field>& AGPDataObserver::phoneFields() {
    static const std::vector<Field> fields = {
        {"ipaddress", &AGPDataObserver::mLocalIPv4},
        {"ipv6-ipaddress-global", &AGPDataObserver::mLocalIPv6},
        {"ip-protocol-mode", &AGPDataObserver::mIPProtocolMode},
        {"http-proxy-addr", &AGPDataObserver::mProxyAddr},
        {"http-proxy-port", &AGPDataObserver::mProxyPort},
        {"currentPhoneNumber", &AGPDataObserver::mPhoneNumber},
        {"e164", &AGPDataObserver::mE164Number},
        {"language", &AGPDataObserver::mLanguage},
        {"related-device-type", &AGPDataObserver::mRelatedDeviceType},
        {"display-skin", &AGPDataObserver::mDisplaySkin},
        {"video-allowed", &AGPDataObserver::mVideoAllowed},
        {"video-on", &AGPDataObserver::mVideoOn},
    };
    return fields;
}

AGPDataObserver::AGPDataObserver() : mVexaService(nullptr), mDeviceType("Veltria") {}

AGPDataObserver::~AGPDataObserver() {
    unregisterVexaDataObserver(mIndex);
}

std::string AGPDataObserver::read(const std::string AGPDataObserver::*member) const {
    std::lock_guard<std::mutex> lock(mValuesLock);
    return this->*member;
}

void AGPDataObserver::write(std::string AGPDataObserver::*member, const std::string& value) {
    std::lock_guard<std::mutex> lock(mValuesLock);
    this->*member = value;
}

void AGPDataObserver::setLanguage(const std::string& language) {
    write(&AGPDataObserver::mLanguage, language);
}

bool AGPDataObserver::startAGPDataObserver(LocalMgmtIfc* service) {
    if (service == nullptr) {
        AGP_LOG(2, "AGPDataObserver startup failed: can't find VEXA Service");
        return false;
    }
    mVexaService = service;
    AGP_LOG(5, "AGPDataObserver started successfully");
    return true;
}

bool AGPDataObserver::updateXMLApplicationConfiguration(const std::string& appName) {
    std::string index;
    if (!getXMLApplicationIndex(appName, index)) {
        return false;
    }
    write(&AGPDataObserver::mIndex, index);
    if (!getXMLApplicationData(index) || !registerVexaDataObserver(index)) {
        return false;
    }
    AGP_LOG(5, "AGPDataObserver: configuration of XML application updated");
    return true;
}

bool AGPDataObserver::getXMLApplicationIndex(const std::string& appName, std::string& index) {
    if (mVexaService == nullptr) {
        AGP_LOG(2, "Can't find VEXA Service");
        return false;
    }
    ManageableData query;
    for (int i = 1; i <= kMaxApplications; ++i) {
        query.addRootId(kAppNamePrefix + ClientUtils::itos(i), nullptr);
    }
    index = "";
    if (!mVexaService->read(query)) {
        AGP_LOG(2, "Can't get list of XML applications");
        return false;
    }
    std::vector<std::string> rootIds;
    query.getRootIds(rootIds);
    for (const std::string& rootId : rootIds) {
        std::string value;
        query.interogate(rootId, rootId, value);
        if (value == appName) {
            index = rootId.substr(rootId.rfind('-') + 1);
            AGP_LOG(5, "Index of XML Application [%s] is [%s]", appName.c_str(), index.c_str());
            break;
        }
    }
    if (index.empty()) {
        AGP_LOG(5, "Couldn't find index of XML Application [%s]", appName.c_str());
        return false;
    }
    return true;
}

bool AGPDataObserver::readFields(const std::vector<Field>& fields, const std::string& suffix) {
    ManageableData query;
    for (const Field& field : fields) {
        query.addRootId(field.key + suffix, nullptr);
    }
    if (!mVexaService->read(query)) {
        return false;
    }
    for (const Field& field : fields) {
        const std::string rootId = field.key + suffix;
        std::string value;
        query.interogate(rootId, rootId, value);
        write(field.member, value);
    }
    return true;
}

bool AGPDataObserver::getXMLApplicationData(const std::string& index) {
    if (index.empty()) {
        AGP_LOG(2, "Invalid XML Application index");
    }
    if (mVexaService == nullptr) {
        AGP_LOG(2, "Can't find VEXA Service");
        return false;
    }
    if (!readFields(applicationFields(), index)) {
        AGP_LOG(2, "Can't get data for XML application");
        return false;
    }
    if (!readFields(phoneFields(), "")) {
        AGP_LOG(2, "Can't get configuration data");
        return false;
    }
    write(&AGPDataObserver::mDeviceType,
          read(&AGPDataObserver::mRelatedDeviceType) == MODEL_BRISA_SET_55 ? "brs55" : "Veltria");
    AGP_LOG(
        5,
        "LocalIPv4: %s, LocalIPv6: %s, LocalIPMode: %s, Proxy: %s:%s, E164phoneNo:%s, phoneNo: %s, Lang: %s, "
        "HWVariant:%s, displaySkin:%s, videoAllowed:%s, videoOn:%s",
        read(&AGPDataObserver::mLocalIPv4).c_str(), read(&AGPDataObserver::mLocalIPv6).c_str(),
        read(&AGPDataObserver::mIPProtocolMode).c_str(), read(&AGPDataObserver::mProxyAddr).c_str(),
        read(&AGPDataObserver::mProxyPort).c_str(), read(&AGPDataObserver::mE164Number).c_str(),
        read(&AGPDataObserver::mPhoneNumber).c_str(), read(&AGPDataObserver::mLanguage).c_str(),
        read(&AGPDataObserver::mRelatedDeviceType).c_str(), read(&AGPDataObserver::mDisplaySkin).c_str(),
        read(&AGPDataObserver::mVideoAllowed).c_str(), read(&AGPDataObserver::mVideoOn).c_str());
    return true;
}

bool AGPDataObserver::registerVexaDataObserver(const std::string&) {
    if (mVexaService == nullptr) {
        AGP_LOG(2, "Can't find VEXA Service");
        return false;
    }
    for (const char* key : kSubscribedKeys) {
        mVexaService->subscribe(key, phoneletAgent(), 1);
    }
    return true;
}

bool AGPDataObserver::unregisterVexaDataObserver(const std::string&) {
    if (mVexaService == nullptr) {
        AGP_LOG(2, "Can't find VEXA Service");
        return false;
    }
    for (const char* key : kSubscribedKeys) {
        mVexaService->unsubscribe(key, phoneletAgent(), 1);
    }
    return true;
}

void AGPDataObserver::processChangedManageableData(ManageableData& data) {
    AGP_LOG(5, "processChangedManageableData() called");
    std::vector<std::string> rootIds;
    data.getRootIds(rootIds);
    bool addressChanged = false;
    for (const std::string& rootId : rootIds) {
        std::string value;
        data.interogate(rootId, rootId, value);
        const Field* field = nullptr;
        for (const Field& candidate : phoneFields()) {
            if (rootId == candidate.key) {
                field = &candidate;
            }
        }
        if (field == nullptr) {
            AGP_LOG(5, "processChangedManageableData: Unsupported rootId = %s", rootId.c_str());
            continue;
        }
        if (isAddressKey(rootId)) {
            if (read(field->member) == value) {
                continue;
            }
            addressChanged = true;
        }
        write(field->member, value);
    }
    AGPServerConnection* connection = AGPPhoneletManager::getAGPServerConnection();
    if (addressChanged && connection != nullptr) {
        connection->localIPAddressChanged();
    }
}

std::string AGPDataObserver::getLocalIPAddress() const {
    std::lock_guard<std::mutex> lock(mValuesLock);
    if (mIPProtocolMode == "IPv4") {
        return mLocalIPv4;
    }
    if (mIPProtocolMode == "IPv4_IPv6") {
        return mLocalIPv4.empty() ? mLocalIPv6 : mLocalIPv4;
    }
    return mLocalIPv6;
}
