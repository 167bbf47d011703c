// Base of objects that handle call-control events by kind.
#pragma once

class CSTAEstablishedEvent;
class CSTAConnectionClearedEvent;

// CSTAEvent::dispatch calls the operation for the event's kind; every one does nothing unless
// overridden.
class CSTAEventObserverBase {
public:
    virtual ~CSTAEventObserverBase() = default;
    virtual void handleCSTAEstablishedEvent(CSTAEstablishedEvent* /*event*/) {}
    virtual void handleCSTAConnectionClearedEvent(CSTAConnectionClearedEvent* /*event*/) {}
};
