// Call control for the phonelet: calls made and cleared by actions, and their events.
#pragma once

#include <string>

#include "csta/CSTAEventObserverBase.h"

class CSTAServiceIfc;

class AGPCallHandler : public CSTAEventObserverBase {
public:
    AGPCallHandler() = default;
    virtual ~AGPCallHandler() = default;
    AGPCallHandler(const AGPCallHandler&) = delete;
    AGPCallHandler& operator=(const AGPCallHandler&) = delete;

    bool startAGPCallHandler(CSTAServiceIfc* service);
    CSTAServiceIfc* getService() const { return mService; }

    // Call control takes effect with the call handling; until then a request is dropped.
    void MakeOutgoingCall(const std::string& number, bool withFocus);
    void ClearOutgoingCall(const std::string& number);

private:
    CSTAServiceIfc* mService = nullptr;
};
