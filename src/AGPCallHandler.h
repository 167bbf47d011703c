// Call control for the phonelet: calls made and cleared by actions, and their events.
#pragma once

#include <list>
#include <mutex>
#include <string>
#include <utility>

#include "csta/CSTAEventObserverBase.h"

class CSTAServiceIfc;

// Lifetime: created and deleted by the service registry. Requests run on queue threads, events
// arrive on the platform's event thread; the call list and the monitor's cross-reference are
// shared between them under mMutex, which is never held while a request is carried out.
class AGPCallHandler : public CSTAEventObserverBase {
public:
    AGPCallHandler() = default;
    ~AGPCallHandler() override;
    AGPCallHandler(const AGPCallHandler&) = delete;
    AGPCallHandler& operator=(const AGPCallHandler&) = delete;

    bool startAGPCallHandler(CSTAServiceIfc* service);
    CSTAServiceIfc* getService() const { return mService; }

    // At most two calls of the handler's own at a time; false when no call was made.
    bool MakeOutgoingCall(std::string& number, bool& takeFocus);
    // An empty number clears the latest call; a number clears the call to it, if any.
    bool ClearOutgoingCall(std::string& number);
    bool makeCall(const std::string& number, std::string& callIdOut);
    bool clearConnection(std::string& callId);
    bool startMonitor(std::string& crossRefOut);
    bool stopMonitor(std::string& crossRef);

    void handleCSTAEstablishedEvent(CSTAEstablishedEvent* event) override;
    void handleCSTAConnectionClearedEvent(CSTAConnectionClearedEvent* event) override;

    // Number of calls of the handler's own that are known.
    std::size_t callCount() const;

private:
    using Call = std::pair<std::string, std::string>; // call ID, destination number
    // Whether `callId` is the first or the last call of the list (under mMutex).
    bool isOwnCallLocked(const std::string& callId) const;
    void removeCallLocked(const std::string& callId);
    std::string subscriberNumber() const;

    CSTAServiceIfc* mService = nullptr;
    std::string mMonitorCrossRefId;
    std::list<Call> mCalls;
    bool mTakeFocus = true;
    mutable std::mutex mMutex;
};
