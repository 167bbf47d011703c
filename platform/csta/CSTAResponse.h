// Base of the data a successful call-control request answers with.
#pragma once

// Callers check the kind they expect with dynamic_cast.
class CSTAResponse {
public:
    virtual ~CSTAResponse() = default;
};
