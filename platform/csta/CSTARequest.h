// Base of call-control requests: carried out by CSTAServiceIfc::execute, then holding the result.
#pragma once

#include <memory>
#include <utility>

#include "csta/CSTAResponse.h"

class CSTARequest {
public:
    enum ResponseCode {
        Success = 0,
        NotCarriedOut = 1,  // not executed yet, or by no service
        InvalidRequest = 2, // a request the service does not know, or missing parameters
        InvalidDevice = 3,
        InvalidCall = 4,
        InvalidMonitor = 5,
    };

    CSTARequest() = default;
    virtual ~CSTARequest() = default;
    CSTARequest(const CSTARequest&) = delete;
    CSTARequest& operator=(const CSTARequest&) = delete;

    int getResponseCode() const { return mResponseCode; }
    // The response of a successful request that answers with data (MonitorStart, MakeCall);
    // null otherwise. Owned by the request.
    CSTAResponse* getResponse() const { return mResponse.get(); }

    // Service side.
    void setResult(int responseCode, std::unique_ptr<CSTAResponse> response = nullptr) {
        mResponseCode = responseCode;
        mResponse = std::move(response);
    }

private:
    int mResponseCode = NotCarriedOut;
    std::unique_ptr<CSTAResponse> mResponse;
};
