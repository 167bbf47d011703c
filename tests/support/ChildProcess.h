// A program run as a child process for the tests, the soak driver and the benchmarks.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// Runs `program` with `arguments`; its standard output and error are read all along on a thread
// of their own (a full pipe would stop the child) and kept for waitForOutput and output, the
// first and the latest megabytes of them. With `withInput`, standard input is a pipe fed by
// typeLine, else it is inherited. Whatever still runs is killed when the object goes.
class ChildProcess {
public:
    ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                 bool withInput = false);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool started() const { return mPid > 0 || mExited; }
    std::chrono::steady_clock::time_point startedAt() const { return mStartedAt; }
    bool alive();
    // Waits for the end; the exit status, -1 after a signal or when it never started.
    int wait();
    // SIGTERM, then wait.
    int stop();
    bool typeLine(const std::string& line);
    std::string output();
    // The first group (else the whole match) of `pattern` in the output; empty if it does not
    // appear within `timeout`.
    std::string waitForOutput(const std::string& pattern,
                              std::chrono::milliseconds timeout = std::chrono::seconds(10));
    // Resident memory in kB from the kernel's account of the process; -1 once it has ended.
    long residentKb() const;

private:
    void readOutput(int fd);

    pid_t mPid = 0;
    bool mExited = false;
    int mStatus = 0;
    int mInput = -1;
    std::chrono::steady_clock::time_point mStartedAt;
    std::thread mReader;
    std::mutex mMutex;
    std::string mHead; // the first megabyte of output
    std::string mTail; // what came after it, the latest megabyte at most
};
