// The emulated phone's call control: calls made by requests, answered and ended by the host.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
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
        bool incoming = false; // rung from outside, not made by a request
        bool held = false;
    };
    // Longest number accepted as called or calling device.
    static constexpr std::size_t MAX_NUMBER_LENGTH = 32;
    // At most this many calls at a time, as on a phone with a few lines.
    static constexpr std::size_t MAX_CALLS = 8;

    explicit EmulatedCallControl(EventLoop& loop);
    ~EmulatedCallControl() override;

    int execute(CSTARequest& request) override;

    // Host side.
    // Calls made from now on are answered this long after; a negative delay (the default)
    // leaves answering to answerCall.
    void setAutoAnswerDelay(std::chrono::milliseconds delay);
    // The phone's own number, accepted as device object besides "localDeviceID".
    void setLocalNumber(const std::string& number);
    // The far end answers a call of the phone, or the user answers an incoming one; false for an
    // unknown or already answered call.
    bool answerCall(const std::string& callId);
    // The far end hangs up, or the user does; false for an unknown call.
    bool hangUp(const std::string& callId);
    // A call from `number` rings the phone; its id, or "" (with `error` set) for a number that
    // cannot call or when the phone has no free line.
    std::string ringIncoming(const std::string& number, std::string& error);
    // The user holds an answered call or takes it back; false when the call is unknown,
    // unanswered or already in that state.
    bool holdCall(const std::string& callId, bool hold);
    // Told, on the event loop, whenever a call starts, changes or ends.
    void setCallObserver(std::function<void()> observer);
    // Whether `number` can be dialled: 1..MAX_NUMBER_LENGTH characters of digits, "*", "#", a
    // leading "+" and the separators blank - / ( ) ., with at least one digit, "*" or "#".
    static bool isDialable(const std::string& number);
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
    void notifyObserverLocked();
    void deliver(const std::string& crossRef, EventKind kind, const std::string& callId,
                 const std::string& device);

    mutable std::mutex mMutex;
    std::map<std::string, Monitor> mMonitors;
    std::vector<Call> mCalls;
    std::map<std::string, EventLoop::TaskId> mAutoAnswers;
    std::chrono::milliseconds mAutoAnswerDelay{-1};
    std::string mLocalNumber;
    std::function<void()> mObserver;
    std::uint64_t mNextMonitor = 1;
    std::uint64_t mNextCall = 1;
    LoopTasks mTasks;
};
