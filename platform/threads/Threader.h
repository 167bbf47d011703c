// Starts platform threads and waits for them by their numeric id.
#pragma once

#include <string>

#include "threads/Threadable.h"

// Threader holds no state of its own (threads live in a process-wide table), so it may be
// copied and stored by value, and any Threader can wait for a thread another one started.
class Threader {
public:
    // Starts a thread running body->run(). The id is written to *threadId before start returns.
    // `name` names the thread for diagnostics (an empty name gives "agp-<id>"). `priority` and
    // `flags` are accepted for compatibility and ignored: every thread runs at the default
    // priority and is joinable. Returns non-zero on success, 0 when no thread could be made.
    int start(unsigned long* threadId, Threadable* body, const std::string& name, int priority, int flags);
    // Blocks until the thread has ended. Returns false for an unknown id or a thread waiting
    // for itself.
    bool wait(unsigned long threadId);
};
