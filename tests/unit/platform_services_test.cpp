// Tests of the emulated phone services: keypad, call control, phone book, beeps and clock.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <future>
#include <regex>
#include <string>
#include <unistd.h>
#include <vector>

#include "clock/ClockService.h"
#include "csta/CSTAClearConnectionRequest.h"
#include "csta/CSTAConnectionClearedEvent.h"
#include "csta/CSTAEstablishedEvent.h"
#include "csta/CSTAEventIfc.h"
#include "csta/CSTAEventObserverBase.h"
#include "csta/CSTAMakeCallRequest.h"
#include "csta/CSTAMakeCallResponse.h"
#include "csta/CSTAMonitorStartRequest.h"
#include "csta/CSTAMonitorStartResponse.h"
#include "csta/CSTAMonitorStopRequest.h"
#include "csta/EmulatedCallControl.h"
#include "directory/DirectoryService.h"
#include "events/EventLoop.h"
#include "media/MediaControlService.h"
#include "physical/PhysicalInterfaceService.h"
#include "physical/physicalEventObserver.h"

namespace {

class KeyRecorder : public physicalEventObserver {
public:
    explicit KeyRecorder(EventLoop& loop) : mLoop(loop) {}
    void buttonPressedEvent(PhysDefs::keyFunctionType type, int key, PhysDefs::actionType action,
                            std::string text) override {
        EXPECT_TRUE(mLoop.isLoopThread());
        EXPECT_EQ(type, PhysDefs::KeyFunctionDialpad);
        EXPECT_EQ(action, PhysDefs::KeyPressed);
        presses.push_back(std::to_string(key) + ":" + text);
    }
    std::vector<std::string> presses;

private:
    EventLoop& mLoop;
};

// Lets call events dispatch themselves, as a phonelet hands them to its call handler.
class CallRecorder : public CSTAEventIfc, public CSTAEventObserverBase {
public:
    void deliverEvent(CSTAEvent* event) override { event->dispatch(this); }
    void handleCSTAEstablishedEvent(CSTAEstablishedEvent* event) override {
        record("established " + event->getCallID() + " " + event->getMonitorCrossRefID());
    }
    void handleCSTAConnectionClearedEvent(CSTAConnectionClearedEvent* event) override {
        record("cleared " + event->getDroppedConnectionCallID() + " " + event->getMonitorCrossRefID());
    }
    std::vector<std::string> events;
    std::promise<void> firstEvent;

private:
    void record(const std::string& text) {
        events.push_back(text);
        if (events.size() == 1) {
            firstEvent.set_value();
        }
    }
};

CSTAMonitorFilter onlyEstablishedAndCleared() {
    CSTAMonitorFilter filter;
    filter.setCallControlFilter(true);
    filter.setCallAssociatedFilter(true);
    filter.setPhysicalDeviceFilter(true);
    filter.setLogicalDeviceFilter(true);
    filter.setVendorSpecificFilter(true);
    filter.setSystemFilter(true);
    filter.setEstablishedFilter(false);
    filter.setConnectionClearedFilter(false);
    return filter;
}

std::string startMonitor(CSTAServiceIfc& service, CSTAEventIfc* source, const CSTAMonitorFilter& filter) {
    CSTAMonitorStartRequest request;
    request.setSourceService(source);
    request.setDeviceObject("localDeviceID");
    request.setRequestedMonitorFilter(filter);
    EXPECT_EQ(service.execute(request), 0);
    auto* response = dynamic_cast<CSTAMonitorStartResponse*>(request.getResponse());
    return response == nullptr ? "" : response->GetMonitorCrossRefID();
}

std::string makeCall(CSTAServiceIfc& service, const std::string& number) {
    CSTAMakeCallRequest request;
    request.SetCallingDevice("200");
    request.SetCalledDevice(number);
    EXPECT_EQ(service.execute(request), 0);
    auto* response = dynamic_cast<CSTAMakeCallResponse*>(request.getResponse());
    return response == nullptr ? "" : response->GetCallID();
}

} // namespace

TEST(PhysicalInterfaceService, DeliversEachPressOnceToKeypadSubscribersOnly) {
    EventLoop loop;
    PhysicalInterfaceService keypad(loop);
    KeyRecorder subscriber(loop);
    KeyRecorder hookSwitchOnly(loop);
    EXPECT_FALSE(keypad.subscribe(&subscriber, {}));
    ASSERT_TRUE(keypad.subscribe(&subscriber, {PhysDefs::KeyGrpButtonEvents()}));
    ASSERT_TRUE(keypad.subscribe(&hookSwitchOnly, {PhysDefs::SubscriptionGrp{1, 1, 1}}));
    const PhysDefs::SubscriptionGrp group = PhysDefs::KeyGrpButtonEvents();
    EXPECT_EQ(group.deviceClass * 100 + group.eventKind * 10 + group.delivery, 211);

    for (int key : {1, 9, 10, 11, 0}) {
        EXPECT_TRUE(keypad.pressKey(key));
    }
    EXPECT_FALSE(keypad.pressKey(12));
    EXPECT_FALSE(keypad.pressKey(-1));
    loop.drain();
    EXPECT_EQ(subscriber.presses, (std::vector<std::string>{"1:1", "9:9", "10:*", "11:#", "0:0"}));
    EXPECT_TRUE(hookSwitchOnly.presses.empty());

    // A press still queued when the observer unsubscribes is not delivered to it.
    std::promise<void> release;
    loop.post([&] { release.get_future().wait(); });
    keypad.pressKey(5);
    EXPECT_TRUE(keypad.unsubscribe(&subscriber));
    EXPECT_FALSE(keypad.unsubscribe(&subscriber));
    release.set_value();
    keypad.pressKey(6);
    loop.drain();
    EXPECT_EQ(subscriber.presses.size(), 5u);
}

TEST(EmulatedCallControl, CallIsMadeAnsweredAndClearedWithTheTwoEvents) {
    EventLoop loop;
    EmulatedCallControl calls(loop);
    CallRecorder handler;
    CallRecorder filtersEverything;
    CSTAMonitorFilter callControlOff;
    callControlOff.setCallControlFilter(true);
    const std::string crossRef = startMonitor(calls, &handler, onlyEstablishedAndCleared());
    ASSERT_FALSE(crossRef.empty());
    ASSERT_FALSE(startMonitor(calls, &filtersEverything, callControlOff).empty());

    const std::string callId = makeCall(calls, "0891234");
    ASSERT_FALSE(callId.empty());
    ASSERT_EQ(calls.calls().size(), 1u);
    EXPECT_FALSE(calls.calls()[0].answered);
    EXPECT_TRUE(calls.answerCall(callId));
    EXPECT_FALSE(calls.answerCall(callId)) << "answered once";

    CSTAClearConnectionRequest clear;
    clear.SetCallID(callId);
    clear.SetDeviceID("200");
    EXPECT_EQ(calls.execute(clear), 0);
    EXPECT_EQ(clear.getResponse(), nullptr);
    EXPECT_TRUE(calls.calls().empty());
    loop.drain();
    EXPECT_EQ(handler.events, (std::vector<std::string>{"established " + callId + " " + crossRef,
                                                        "cleared " + callId + " " + crossRef}));
    EXPECT_TRUE(filtersEverything.events.empty());

    CSTAMonitorStopRequest stop;
    stop.setMonitorCrossRefID(crossRef);
    EXPECT_EQ(calls.execute(stop), 0);
    EXPECT_EQ(calls.execute(stop), CSTARequest::InvalidMonitor);
    const std::string unmonitored = makeCall(calls, "0891234");
    EXPECT_TRUE(calls.hangUp(unmonitored));
    loop.drain();
    EXPECT_EQ(handler.events.size(), 2u) << "a stopped monitor reports nothing";
}

TEST(EmulatedCallControl, AnswersByItselfAfterTheDelayAndRefusesBadRequests) {
    EventLoop loop;
    EmulatedCallControl calls(loop);
    CallRecorder handler;
    startMonitor(calls, &handler, CSTAMonitorFilter());
    calls.setAutoAnswerDelay(std::chrono::milliseconds(1));
    const std::string callId = makeCall(calls, "100");
    ASSERT_EQ(handler.firstEvent.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
    loop.drain();
    EXPECT_EQ(handler.events.size(), 1u);
    EXPECT_TRUE(calls.calls()[0].answered);

    CSTAMakeCallRequest noNumber;
    EXPECT_EQ(calls.execute(noNumber), CSTARequest::InvalidDevice);
    EXPECT_EQ(noNumber.getResponse(), nullptr);
    CSTAClearConnectionRequest unknownCall;
    unknownCall.SetCallID("call-99");
    EXPECT_EQ(calls.execute(unknownCall), CSTARequest::InvalidCall);
    CSTAMonitorStartRequest otherDevice;
    otherDevice.setSourceService(&handler);
    otherDevice.setDeviceObject("300");
    EXPECT_EQ(calls.execute(otherDevice), CSTARequest::InvalidDevice);
    calls.setLocalNumber("300");
    EXPECT_EQ(calls.execute(otherDevice), 0) << "the phone's own number names the local device too";
    CSTAMonitorStartRequest noSource;
    noSource.setDeviceObject("localDeviceID");
    EXPECT_EQ(calls.execute(noSource), CSTARequest::InvalidRequest);
    CSTARequest unknownKind;
    EXPECT_EQ(unknownKind.getResponseCode(), CSTARequest::NotCarriedOut);
    EXPECT_EQ(calls.execute(unknownKind), CSTARequest::InvalidRequest);

    // An answer still pending when the service goes must not run afterwards.
    calls.setAutoAnswerDelay(std::chrono::hours(1));
    makeCall(calls, "101");
    EXPECT_EQ(calls.calls().size(), 2u);
}

TEST(DirectoryService, FindsNumbersFromFileAndApiIgnoringSeparators) {
    const std::string path = testing::TempDir() + "agp_directory_" + std::to_string(getpid());
    std::ofstream(path) << "number,first name,surname,type,picture\n# phone book\n0123,X,Y,mobile,x.png\n\n"
                           "089 12-34,Anna,\"Berg, Jr.\",2\nbad line\n555,A,B,7\n,A,B,1\n12ab,A,B,private\n"
                           "1,\"open,A,B,1\n2,A,B,1,../x.png\n";
    DirectoryService directory;
    std::vector<std::string> problems;
    EXPECT_FALSE(directory.loadFile(path, problems));
    std::remove(path.c_str());
    EXPECT_EQ(problems,
              (std::vector<std::string>{
                  path + ":6: expected 4 or 5 fields (number,first name,surname,type[,picture]), found 1",
                  path + ":7: type must be private, business, business2 or mobile (or 1 to 4), not '7'",
                  path + ":8: '' is not a phone number", path + ":9: '12ab' is not a phone number",
                  path + ":10: a quoted field is not closed",
                  path + ":11: the picture is a file name in the phone's picture folder, without '/'"}));
    EXPECT_EQ(directory.size(), 2u) << "good lines are kept";

    DirectoryRecord record;
    ASSERT_TRUE(directory.findByNumber("0123", record));
    EXPECT_EQ(record.firstName, "X");
    EXPECT_EQ(record.surname, "Y");
    EXPECT_EQ(record.pictureFileName, "x.png");
    EXPECT_EQ(record.numberType, DirectoryRecord::Mobile);
    ASSERT_TRUE(directory.findByNumber("(089) 1234", record));
    EXPECT_EQ(record.surname, "Berg, Jr.");
    EXPECT_EQ(record.pictureFileName, "");

    DirectoryRecord untouched;
    untouched.firstName = "keep";
    EXPECT_FALSE(directory.findByNumber("999", untouched));
    EXPECT_FALSE(directory.findByNumber(" ", untouched));
    EXPECT_EQ(untouched.firstName, "keep");
    EXPECT_TRUE(directory.addEntry(DirectoryRecord{"999", "New", "Entry", "", DirectoryRecord::Private}));
    EXPECT_FALSE(directory.addEntry(DirectoryRecord{"998", "Bad", "Type", "", 0}));
    EXPECT_TRUE(directory.findByNumber("999", untouched));
    EXPECT_TRUE(directory.removeEntry("999"));
    EXPECT_FALSE(directory.findByNumber("999", untouched));
    EXPECT_EQ(directory.entries().size(), 2u);
    EXPECT_FALSE(directory.loadFile(path + ".missing", problems));
}

TEST(MediaAndClock, RecordsKnownBeepsAndTellsTheTime) {
    MediaControlService media;
    EXPECT_EQ(media.playSystemBeep(4), 1);
    EXPECT_EQ(media.playSystemBeep(2), 1);
    EXPECT_EQ(media.playSystemBeep(7), 0);
    const auto beeps = media.beeps();
    ASSERT_EQ(beeps.size(), 2u);
    EXPECT_EQ(beeps[0].beepNumber, 4);
    EXPECT_EQ(beeps[1].beepNumber, 2);
    EXPECT_LE(beeps[0].when, beeps[1].when);
    for (int i = 0; i < 150; ++i) {
        media.playSystemBeep(3);
    }
    EXPECT_EQ(media.beeps().size(), MediaControlService::MAX_RECORDED);

    ClockService clock;
    EXPECT_TRUE(std::regex_match(clock.getTimeText(0), std::regex("[0-2][0-9]:[0-5][0-9]:[0-6][0-9]")));
}
