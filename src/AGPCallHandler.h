// Call control for the phonelet: calls made and cleared by actions, and their events.
#pragma once

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

private:
    CSTAServiceIfc* mService = nullptr;
};
