// The platform service that carries out call-control requests.
#pragma once

#include "services/PlatformService.h"

class CSTARequest;

class CSTAServiceIfc : public PlatformService {
public:
    static constexpr const char* SERVICE_NAME = "CSTAServiceIfc";
    // The device object that names the phone itself.
    static constexpr const char* LOCAL_DEVICE = "localDeviceID";

    // Carries out a request synchronously. Afterwards the request holds its response code
    // (CSTARequest::Success, 0, when it worked) and, for MonitorStart and MakeCall, its
    // response. Returns the response code. Events that follow arrive on the event loop.
    virtual int execute(CSTARequest& request) = 0;
};
