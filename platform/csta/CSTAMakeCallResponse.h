// Answer to a make-call request: the new call's id.
#pragma once

#include <string>

#include "csta/CSTAResponse.h"

class CSTAMakeCallResponse : public CSTAResponse {
public:
    explicit CSTAMakeCallResponse(const std::string& callID) : mCallID(callID) {}
    std::string GetCallID() const { return mCallID; }

private:
    std::string mCallID;
};
