// Whether the platform's threads have work: the settled signal of the emulated phone.
#pragma once

// Counts, process-wide, the threads started by Threader, those of them blocked waiting for work,
// and the work posted but not yet taken. A thread waits for work when it takes an unbounded
// counting semaphore (maximum -1) without a time limit, as a message queue's thread does between
// messages; posting work is giving such a semaphore. Semaphore and Threader report here; the
// counts are changed and read under one lock, so a reader never sees a posted message as taken.
namespace ThreadActivity {

void threadStarted();
void threadEnded();
void waitingForWork(bool waiting);
void workPosted(int count);

// True when every running platform thread waits for work and none is posted.
bool allWaitingForWork();

} // namespace ThreadActivity
