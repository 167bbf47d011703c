// Call control for the phonelet: calls made and cleared by actions, and their events.
#include "AGPCallHandler.h"

#define AGP_LOG_MODULE "AGPCallHandler"
#define AGP_LOG_SOURCE "./src/AGPCallHandler.cpp"

#include "AGPDataObserver.h"
#include "AGPLog.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "csta/CSTAClearConnectionRequest.h"
#include "csta/CSTAConnectionClearedEvent.h"
#include "csta/CSTAEstablishedEvent.h"
#include "csta/CSTAMakeCallRequest.h"
#include "csta/CSTAMakeCallResponse.h"
#include "csta/CSTAMonitorFilter.h"
#include "csta/CSTAMonitorStartRequest.h"
#include "csta/CSTAMonitorStartResponse.h"
#include "csta/CSTAMonitorStopRequest.h"
#include "csta/CSTAServiceIfc.h"

AGPCallHandler::~AGPCallHandler() {
    std::string crossRef;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        crossRef = mMonitorCrossRefId;
    }
    if (!crossRef.empty() && mService != nullptr) {
        stopMonitor(crossRef);
    }
    mService = nullptr;
    AGP_LOG(5, "AGPCallHandler: Destructor");
    std::lock_guard<std::mutex> lock(mMutex);
    mCalls.clear();
}

bool AGPCallHandler::startAGPCallHandler(CSTAServiceIfc* service) {
    if (service == nullptr) {
        AGP_LOG(2, "AGPCallHandler startup failed: can't find CSTA Service");
        return false;
    }
    mService = service;
    return true;
}

std::string AGPCallHandler::subscriberNumber() const {
    AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
    return configuration != nullptr ? configuration->getSubscriberNumber() : std::string();
}

bool AGPCallHandler::startMonitor(std::string& crossRefOut) {
    crossRefOut.clear();
    if (mService == nullptr) {
        return false;
    }
    CSTAMonitorStartRequest request;
    request.setSourceService(AGPPhoneletManager::getAGPPhonelet());
    request.setDeviceObject(CSTAServiceIfc::LOCAL_DEVICE);
    // Of every event only Established and ConnectionCleared are wanted.
    CSTAMonitorFilter filter;
    filter.setCallControlFilter(true);
    filter.setCallAssociatedFilter(true);
    filter.setPhysicalDeviceFilter(true);
    filter.setLogicalDeviceFilter(true);
    filter.setVendorSpecificFilter(true);
    filter.setSystemFilter(true);
    filter.setEstablishedFilter(false);
    filter.setConnectionClearedFilter(false);
    request.setRequestedMonitorFilter(filter);
    mService->execute(request);
    if (request.getResponseCode() != CSTARequest::Success) {
        AGP_LOG(2, "AGPCallHandler::startMonitor: no successful response code for MonitorStartRequest");
        return false;
    }
    auto* response = dynamic_cast<CSTAMonitorStartResponse*>(request.getResponse());
    if (response == nullptr) {
        AGP_LOG(2, "AGPCallHandler::startMonitor: invalid CSTAMonitorStartResponse");
        return false;
    }
    crossRefOut = response->GetMonitorCrossRefID();
    AGP_LOG(5, "AGPCallHandler::startMonitor: CSTA MonitorCrossRefID %s received", crossRefOut.c_str());
    return true;
}

bool AGPCallHandler::stopMonitor(std::string& crossRef) {
    AGP_LOG(5, "AGPCallHandler::stopMonitor: called for CSTA MonitorCrossRefID %s", crossRef.c_str());
    if (mService == nullptr) {
        return false;
    }
    CSTAMonitorStopRequest request;
    request.setMonitorCrossRefID(crossRef);
    if (mService->execute(request) != CSTARequest::Success) {
        AGP_LOG(2, "AGPCallHandler::stopMonitor: no successful response code for  for MonitorStopRequest");
        return false;
    }
    crossRef.clear();
    return true;
}

bool AGPCallHandler::MakeOutgoingCall(std::string& number, bool& takeFocus) {
    std::string crossRef;
    std::size_t calls = 0;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mTakeFocus = takeFocus;
        crossRef = mMonitorCrossRefId;
        calls = mCalls.size();
    }
    if (number.empty()) {
        AGP_LOG(5, "AGPCallHandler::MakeOutgoingCall: Destination phone number missing");
        return false;
    }
    if (crossRef.empty()) {
        AGP_LOG(5,
                "AGPCallHandler::MakeOutgoingCall: CSTACrossReferenceId not found, new one will be created");
        if (!startMonitor(crossRef)) {
            return false;
        }
        std::lock_guard<std::mutex> lock(mMutex);
        mMonitorCrossRefId = crossRef;
    }
    if (calls >= 2) {
        AGP_LOG(5, "AGPCallHandler::MakeOutgoingCall: two calls already active");
        return false;
    }
    std::string callId;
    if (!makeCall(number, callId)) {
        AGP_LOG(2, "AGPCallHandler::MakeOutgoingCall: makeCall failed");
        return false;
    }
    return true;
}

bool AGPCallHandler::makeCall(const std::string& number, std::string& callIdOut) {
    callIdOut.clear();
    if (mService == nullptr) {
        return false;
    }
    CSTAMakeCallRequest request;
    request.SetCallingDevice(subscriberNumber());
    request.SetCalledDevice(number);
    mService->execute(request);
    if (request.getResponseCode() != CSTARequest::Success) {
        AGP_LOG(2, "AGPCallHandler::makeCall: no successful response code for  for MakeCallRequest");
        return false;
    }
    auto* response = dynamic_cast<CSTAMakeCallResponse*>(request.getResponse());
    if (response == nullptr) {
        AGP_LOG(2, "AGPCallHandler::makeCall: invalid CSTAMakeCallResponse");
        return false;
    }
    callIdOut = response->GetCallID();
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mCalls.emplace_back(callIdOut, number);
    }
    AGP_LOG(5, "AGPCallHandler::makeCall: callId %s received", callIdOut.c_str());
    return true;
}

bool AGPCallHandler::ClearOutgoingCall(std::string& number) {
    std::string callId;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mCalls.empty()) {
            AGP_LOG(5, "AGPCallHandler::ClearOutgoingCall: no active call detected");
            return true;
        }
        if (number.empty()) {
            callId = mCalls.back().first;
        } else if (mCalls.back().second == number) {
            callId = mCalls.back().first;
        } else if (mCalls.front().second == number) {
            callId = mCalls.front().first;
        } else {
            AGP_LOG(5, "AGPCallHandler::ClearOutgoingCall: call to destination number %s not active",
                    number.c_str());
            return true;
        }
    }
    if (!clearConnection(callId)) {
        AGP_LOG(2, "AGPCallHandler::ClearOutgoingCall: clearConnection failed");
        return false;
    }
    return true;
}

bool AGPCallHandler::clearConnection(std::string& callId) {
    bool cleared = false;
    if (mService != nullptr) {
        CSTAClearConnectionRequest request;
        request.SetCallID(callId);
        request.SetDeviceID(subscriberNumber());
        cleared = mService->execute(request) == CSTARequest::Success;
    }
    if (cleared) {
        // The list entry goes with the ConnectionCleared event.
        return true;
    }
    AGP_LOG(2,
            "AGPCallHandler::clearConnection: no successful response code for  for ClearConnectionRequest");
    std::lock_guard<std::mutex> lock(mMutex);
    removeCallLocked(callId);
    return false;
}

bool AGPCallHandler::isOwnCallLocked(const std::string& callId) const {
    return !mCalls.empty() && (mCalls.front().first == callId || mCalls.back().first == callId);
}

void AGPCallHandler::removeCallLocked(const std::string& callId) {
    if (mCalls.empty()) {
        return;
    }
    if (mCalls.front().first == callId) {
        mCalls.pop_front();
    } else if (mCalls.back().first == callId) {
        mCalls.pop_back();
    }
}

void AGPCallHandler::handleCSTAEstablishedEvent(CSTAEstablishedEvent* event) {
    if (event == nullptr) {
        return;
    }
    const std::string callId = event->getCallID();
    bool takeFocus = false;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (!mTakeFocus || !isOwnCallLocked(callId) || event->getMonitorCrossRefID() != mMonitorCrossRefId) {
            return;
        }
        takeFocus = mTakeFocus;
    }
    AGP_LOG(5, "handleCSTAEstablishedEvent received, crossRefId = %s, callId = %s, hasFocus = %d",
            event->getMonitorCrossRefID().c_str(), callId.c_str(), takeFocus ? 1 : 0);
    AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (configuration == nullptr || phonelet == nullptr) {
        return;
    }
    // With video the call screen shows the far end, so the focus stays with the platform.
    if (configuration->getVideoAllowed() == "false" || configuration->getVideoOn() == "false") {
        phonelet->AGPRequestFocus();
        phonelet->AGPGrabFocus();
    }
}

void AGPCallHandler::handleCSTAConnectionClearedEvent(CSTAConnectionClearedEvent* event) {
    if (event == nullptr) {
        return;
    }
    const std::string callId = event->getDroppedConnectionCallID();
    std::lock_guard<std::mutex> lock(mMutex);
    if (!isOwnCallLocked(callId) || event->getMonitorCrossRefID() != mMonitorCrossRefId) {
        return;
    }
    AGP_LOG(5, "handleCSTAConnectionClearedEvent received, crossRefId = %s, callId = %s",
            event->getMonitorCrossRefID().c_str(), callId.c_str());
    removeCallLocked(callId);
}

std::size_t AGPCallHandler::callCount() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mCalls.size();
}
