// Sends trace texts, prefixed with the phone's time, to the application's debug program.
#include "AGPRemoteTraceHandler.h"

#define AGP_LOG_MODULE "AGPRemoteTraceHandler"
#define AGP_LOG_SOURCE "./src/AGPRemoteTraceHandler.cpp"

#include "AGPDataObserver.h"
#include "AGPLog.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "AGPServerConnection.h"
#include "clock/ClockServiceIfc.h"
#include "http/HttpServiceHeaders.h"

bool AGPRemoteTraceHandler::startRemoteTraceHandler(ClockServiceIfc* clock) {
    if (clock == nullptr) {
        AGP_LOG(2, "AGPRemoteTraceHandler startup failed: can't find Clock Service");
        return false;
    }
    mClockService = clock;
    AGP_LOG(5, "AGPRemoteTraceHandler started successfully");
    return true;
}

bool AGPRemoteTraceHandler::isEnabled() const {
    AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
    return configuration != nullptr && configuration->isRemoteDebugEnabled();
}

void AGPRemoteTraceHandler::remoteTrace(const std::string& url, const std::string& text) {
    if (!isEnabled()) {
        return;
    }
    AGPServerConnection* connection = AGPPhoneletManager::findAGPServerConnection();
    if (connection == nullptr) {
        AGP_LOG(2, "Can't get AGPServerConnection");
        return;
    }
    const std::string prefix = mClockService != nullptr ? "[" + mClockService->getTimeText(0) + "]\n" : "";
    char* data = nullptr;
    unsigned int size = 0;
    HttpServiceHeaders headers;
    std::string errorText;
    connection->postHttpData(url, AGPServerConnection::REMOTE_TRACE, prefix + text, data, size, headers,
                             errorText);
    delete[] data;
}

void AGPRemoteTraceHandler::remoteTrace(const std::string& text) {
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (phonelet != nullptr && isEnabled()) {
        remoteTrace(phonelet->getApplicationURL(AGPPhonelet::REMOTE_TRACE_URL, "", "", ""), text);
    }
}
