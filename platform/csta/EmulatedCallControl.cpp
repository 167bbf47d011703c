// The emulated phone's call control.
#include "csta/EmulatedCallControl.h"

#include <algorithm>
#include <cctype>
#include <memory>

#include "csta/CSTAClearConnectionRequest.h"
#include "csta/CSTAConnectionClearedEvent.h"
#include "csta/CSTAEstablishedEvent.h"
#include "csta/CSTAEventIfc.h"
#include "csta/CSTAMakeCallRequest.h"
#include "csta/CSTAMakeCallResponse.h"
#include "csta/CSTAMonitorStartRequest.h"
#include "csta/CSTAMonitorStartResponse.h"
#include "csta/CSTAMonitorStopRequest.h"
#include "logging/Log.h"

namespace {
const char* const kModule = "EmulatedCallControl";
const char* const kSource = "./platform/csta/EmulatedCallControl.cpp";

int refuse(CSTARequest& request, int code, const char* what) {
    if (loggingOnAppUni(kModule, 2)) {
        logAppUni(kModule, kSource, 2, __LINE__, "request refused (%d): %s", code, what);
    }
    request.setResult(code);
    return code;
}
} // namespace

EmulatedCallControl::EmulatedCallControl(EventLoop& loop) : mTasks(loop) {}

EmulatedCallControl::~EmulatedCallControl() {
    mTasks.close();
    std::lock_guard<std::mutex> lock(mMutex);
    for (const auto& pending : mAutoAnswers) {
        mTasks.cancel(pending.second);
    }
}

int EmulatedCallControl::execute(CSTARequest& request) {
    if (auto* start = dynamic_cast<CSTAMonitorStartRequest*>(&request)) {
        return startMonitor(*start);
    }
    if (auto* stop = dynamic_cast<CSTAMonitorStopRequest*>(&request)) {
        return stopMonitor(*stop);
    }
    if (auto* make = dynamic_cast<CSTAMakeCallRequest*>(&request)) {
        return makeCall(*make);
    }
    if (auto* clear = dynamic_cast<CSTAClearConnectionRequest*>(&request)) {
        return clearConnection(*clear);
    }
    return refuse(request, CSTARequest::InvalidRequest, "unknown request");
}

void EmulatedCallControl::setAutoAnswerDelay(std::chrono::milliseconds delay) {
    std::lock_guard<std::mutex> lock(mMutex);
    mAutoAnswerDelay = delay;
}

void EmulatedCallControl::setLocalNumber(const std::string& number) {
    std::lock_guard<std::mutex> lock(mMutex);
    mLocalNumber = number;
}

int EmulatedCallControl::startMonitor(CSTAMonitorStartRequest& request) {
    if (request.getSourceService() == nullptr) {
        return refuse(request, CSTARequest::InvalidRequest, "MonitorStart without a source service");
    }
    std::string crossRef;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        const std::string& device = request.getDeviceObject();
        if (device != LOCAL_DEVICE && (mLocalNumber.empty() || device != mLocalNumber)) {
            return refuse(request, CSTARequest::InvalidDevice,
                          "MonitorStart for a device that is not this phone");
        }
        crossRef = "monitor-" + std::to_string(mNextMonitor++);
        mMonitors[crossRef] = Monitor{request.getSourceService(), request.getRequestedMonitorFilter()};
    }
    request.setResult(CSTARequest::Success, std::make_unique<CSTAMonitorStartResponse>(crossRef));
    return CSTARequest::Success;
}

int EmulatedCallControl::stopMonitor(CSTAMonitorStopRequest& request) {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mMonitors.erase(request.getMonitorCrossRefID()) == 0) {
            return refuse(request, CSTARequest::InvalidMonitor, "MonitorStop for an unknown monitor");
        }
    }
    request.setResult(CSTARequest::Success);
    return CSTARequest::Success;
}

bool EmulatedCallControl::isDialable(const std::string& number) {
    if (number.empty() || number.size() > MAX_NUMBER_LENGTH) {
        return false;
    }
    bool hasKey = false;
    for (size_t i = 0; i < number.size(); ++i) {
        const char c = number[i];
        if (std::isdigit(static_cast<unsigned char>(c)) || c == '*' || c == '#') {
            hasKey = true;
        } else if (!(c == '+' && i == 0) && std::string(" -/().").find(c) == std::string::npos) {
            return false;
        }
    }
    return hasKey;
}

void EmulatedCallControl::setCallObserver(std::function<void()> observer) {
    std::lock_guard<std::mutex> lock(mMutex);
    mObserver = std::move(observer);
}

void EmulatedCallControl::notifyObserverLocked() {
    if (mObserver) {
        mTasks.post(mObserver);
    }
}

std::string EmulatedCallControl::ringIncoming(const std::string& number, std::string& error) {
    if (!isDialable(number)) {
        error = "'" + number + "' is not a number that can call (digits, * and #, up to " +
                std::to_string(MAX_NUMBER_LENGTH) + " characters)";
        return "";
    }
    std::lock_guard<std::mutex> lock(mMutex);
    if (mCalls.size() >= MAX_CALLS) {
        error = "all " + std::to_string(MAX_CALLS) + " lines are busy";
        return "";
    }
    const std::string callId = "call-" + std::to_string(mNextCall++);
    mCalls.push_back(
        Call{callId, number, mLocalNumber.empty() ? LOCAL_DEVICE : mLocalNumber, false, true, false});
    notifyObserverLocked();
    return callId;
}

bool EmulatedCallControl::holdCall(const std::string& callId, bool hold) {
    std::lock_guard<std::mutex> lock(mMutex);
    auto call = std::find_if(mCalls.begin(), mCalls.end(), [&](const Call& c) { return c.callId == callId; });
    if (call == mCalls.end() || !call->answered || call->held == hold) {
        return false;
    }
    call->held = hold;
    notifyObserverLocked();
    return true;
}

int EmulatedCallControl::makeCall(CSTAMakeCallRequest& request) {
    if (request.GetCalledDevice().empty()) {
        return refuse(request, CSTARequest::InvalidDevice, "MakeCall without a called device");
    }
    if (!isDialable(request.GetCalledDevice())) {
        return refuse(request, CSTARequest::InvalidDevice, "MakeCall to a number that cannot be dialled");
    }
    std::string callId;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mCalls.size() >= MAX_CALLS) {
            return refuse(request, CSTARequest::InvalidDevice, "MakeCall with every line busy");
        }
        callId = "call-" + std::to_string(mNextCall++);
        mCalls.push_back(Call{callId, request.GetCallingDevice(), request.GetCalledDevice(), false});
        if (mAutoAnswerDelay.count() >= 0) {
            mAutoAnswers[callId] =
                mTasks.postDelayed(mAutoAnswerDelay, [this, callId] { answerCall(callId); });
        }
        notifyObserverLocked();
    }
    if (loggingOnAppUni(kModule, 5)) {
        logAppUni(kModule, kSource, 5, __LINE__, "call %s to %s", callId.c_str(),
                  request.GetCalledDevice().c_str());
    }
    request.setResult(CSTARequest::Success, std::make_unique<CSTAMakeCallResponse>(callId));
    return CSTARequest::Success;
}

int EmulatedCallControl::clearConnection(CSTAClearConnectionRequest& request) {
    if (!endCall(request.GetCallID(), request.GetDeviceID())) {
        return refuse(request, CSTARequest::InvalidCall, "ClearConnection for an unknown call");
    }
    request.setResult(CSTARequest::Success);
    return CSTARequest::Success;
}

bool EmulatedCallControl::answerCall(const std::string& callId) {
    std::lock_guard<std::mutex> lock(mMutex);
    auto call = std::find_if(mCalls.begin(), mCalls.end(), [&](const Call& c) { return c.callId == callId; });
    if (call == mCalls.end() || call->answered) {
        return false;
    }
    call->answered = true;
    auto pending = mAutoAnswers.find(callId);
    if (pending != mAutoAnswers.end()) {
        mTasks.cancel(pending->second);
        mAutoAnswers.erase(pending);
    }
    postEventLocked(EventKind::Established, *call, call->calledDevice);
    notifyObserverLocked();
    return true;
}

bool EmulatedCallControl::hangUp(const std::string& callId) {
    std::string farEnd;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        auto call =
            std::find_if(mCalls.begin(), mCalls.end(), [&](const Call& c) { return c.callId == callId; });
        if (call == mCalls.end()) {
            return false;
        }
        farEnd = call->incoming ? call->callingDevice : call->calledDevice;
    }
    return endCall(callId, farEnd);
}

bool EmulatedCallControl::endCall(const std::string& callId, const std::string& device) {
    std::lock_guard<std::mutex> lock(mMutex);
    auto call = std::find_if(mCalls.begin(), mCalls.end(), [&](const Call& c) { return c.callId == callId; });
    if (call == mCalls.end()) {
        return false;
    }
    auto pending = mAutoAnswers.find(callId);
    if (pending != mAutoAnswers.end()) {
        mTasks.cancel(pending->second);
        mAutoAnswers.erase(pending);
    }
    postEventLocked(EventKind::ConnectionCleared, *call, device);
    mCalls.erase(call);
    notifyObserverLocked();
    return true;
}

std::vector<EmulatedCallControl::Call> EmulatedCallControl::calls() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mCalls;
}

std::size_t EmulatedCallControl::monitorCount() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mMonitors.size();
}

void EmulatedCallControl::postEventLocked(EventKind kind, const Call& call, const std::string& device) {
    // The monitors of this moment get the event; one stopped before delivery does not.
    for (const auto& monitor : mMonitors) {
        mTasks.post([this, crossRef = monitor.first, kind, callId = call.callId, device] {
            deliver(crossRef, kind, callId, device);
        });
    }
}

void EmulatedCallControl::deliver(const std::string& crossRef, EventKind kind, const std::string& callId,
                                  const std::string& device) {
    std::unique_ptr<CSTAEvent> event;
    if (kind == EventKind::Established) {
        event = std::make_unique<CSTAEstablishedEvent>(crossRef, callId, device);
    } else {
        event = std::make_unique<CSTAConnectionClearedEvent>(crossRef, callId, device);
    }
    CSTAEventIfc* source = nullptr;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        auto monitor = mMonitors.find(crossRef);
        if (monitor == mMonitors.end() || event->isFilteredOutBy(monitor->second.filter)) {
            return;
        }
        source = monitor->second.source;
    }
    source->deliverEvent(event.get());
}
