// The emulated phone's call control: calls made by requests, answered and ended by the host.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "csta/CSTAMonitorFilter.h"
#include "csta/CSTAServiceIfc.h"
#include "events/LoopTasks.h"

class CSTAClearConnectionRequest;
class CSTAEventIfc;
class CSTAMakeCallRequest;
class CSTAMonitorStartRequest;
class CSTAMonitorStopRequest;

// The emulated phone has one device, named "localDeviceID" or by its own number; every call is
// a call of that device, so the calling device of MakeCall and the device of ClearConnection
// are taken as given. A call is answered by the far end when the host says so (answerCall) or,
// when an auto-answer delay is set, that long after it was made. Established and
// ConnectionCleared events go to every monitor whose filter lets them through, on the loop.
class EmulatedCallControl : public CSTAServiceIfc {
public:
    struct Call {
        std::string callId;
        std::string callingDevice;
        std::string calledDevice;
        bool answered = false;
    };

    explicit EmulatedCallControl(EventLoop& loop);
    ~EmulatedCallControl() override;

    int execute(CSTARequest& request) override;

    // Host side.
    // Calls made from now on are answered this long after; a negative delay (the default)
    // leaves answering to answerCall.
    void setAutoAnswerDelay(std::chrono::milliseconds delay);
    // The phone's own number, accepted as device object besides "localDeviceID".
    void setLocalNumber(const std::string& number);
    // The far end answers; false for an unknown or already answered call.
    bool answerCall(const std::string& callId);
    // The far end hangs up; false for an unknown call.
    bool hangUp(const std::string& callId);
    // The calls in progress, oldest first.
    std::vector<Call> calls() const;
    std::size_t monitorCount() const;

private:
    struct Monitor {
        CSTAEventIfc* source = nullptr;
        CSTAMonitorFilter filter;
    };
    enum class EventKind { Established, ConnectionCleared };

    int startMonitor(CSTAMonitorStartRequest& request);
    int stopMonitor(CSTAMonitorStopRequest& request);
    int makeCall(CSTAMakeCallRequest& request);
    int clearConnection(CSTAClearConnectionRequest& request);
    // Removes a call and reports it cleared by `device`; false for an unknown call.
    bool endCall(const std::string& callId, const std::string& device);
    void postEventLocked(EventKind kind, const Call& call, const std::string& device);
    void deliver(const std::string& crossRef, EventKind kind, const std::string& callId,
                 const std::string& device);

    mutable std::mutex mMutex;
    std::map<std::string, Monitor> mMonitors;
    std::vector<Call> mCalls;
    std::map<std::string, EventLoop::TaskId> mAutoAnswers;
    std::chrono::milliseconds mAutoAnswerDelay{-1};
    std::string mLocalNumber;
    std::uint64_t mNextMonitor = 1;
    std::uint64_t mNextCall = 1;
    LoopTasks mTasks;
};
