// Call control for the phonelet: calls made and cleared by actions, and their events.
#include "AGPCallHandler.h"

#define AGP_LOG_MODULE "AGPCallHandler"
#define AGP_LOG_SOURCE "./src/AGPCallHandler.cpp"

#include "AGPLog.h"

bool AGPCallHandler::startAGPCallHandler(CSTAServiceIfc* service) {
    if (service == nullptr) {
        AGP_LOG(2, "AGPCallHandler startup failed: can't find CSTA Service");
        return false;
    }
    mService = service;
    return true;
}

void AGPCallHandler::MakeOutgoingCall(const std::string&, bool) {}

void AGPCallHandler::ClearOutgoingCall(const std::string&) {}
