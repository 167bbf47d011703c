// Common base of every service the platform hands out by name through the context.
#pragma once

// The phonelet asks the context for a service by name and checks the result against the
// interface it expects with dynamic_cast; this base makes that check possible.
class PlatformService {
public:
    virtual ~PlatformService() = default;
};
