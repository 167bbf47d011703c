// A program run as a child process for the tests, the soak driver and the benchmarks.
#include "ChildProcess.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <regex>

extern char** environ;

namespace {

constexpr std::size_t kKeptOutput = 1 << 20;

} // namespace

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           bool withInput) {
    int outputFds[2];
    int inputFds[2] = {-1, -1};
    if (pipe(outputFds) != 0) {
        return;
    }
    if (withInput && pipe(inputFds) != 0) {
        close(outputFds[0]);
        close(outputFds[1]);
        return;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (withInput) {
        posix_spawn_file_actions_adddup2(&actions, inputFds[0], 0);
        posix_spawn_file_actions_addclose(&actions, inputFds[1]);
    }
    posix_spawn_file_actions_adddup2(&actions, outputFds[1], 1);
    posix_spawn_file_actions_adddup2(&actions, outputFds[1], 2);
    posix_spawn_file_actions_addclose(&actions, outputFds[0]);
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), program);
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(&word[0]);
    }
    argv.push_back(nullptr);
    mStartedAt = std::chrono::steady_clock::now();
    if (posix_spawn(&mPid, program.c_str(), &actions, nullptr, argv.data(), environ) != 0) {
        mPid = 0;
    }
    posix_spawn_file_actions_destroy(&actions);
    close(outputFds[1]);
    if (withInput) {
        close(inputFds[0]);
        mInput = inputFds[1];
    }
    mReader = std::thread([this, fd = outputFds[0]] { readOutput(fd); });
}

ChildProcess::~ChildProcess() {
    if (mInput >= 0) {
        close(mInput);
    }
    if (mPid > 0) {
        kill(mPid, SIGKILL);
    }
    wait();
}

void ChildProcess::readOutput(int fd) {
    char buffer[4096];
    ssize_t got;
    while ((got = read(fd, buffer, sizeof buffer)) > 0) {
        std::lock_guard<std::mutex> lock(mMutex);
        std::string& into = mHead.size() < kKeptOutput ? mHead : mTail;
        into.append(buffer, static_cast<std::size_t>(got));
        if (mTail.size() > 2 * kKeptOutput) {
            mTail.erase(0, mTail.size() - kKeptOutput);
        }
    }
    close(fd);
}

bool ChildProcess::alive() {
    if (mPid <= 0) {
        return false;
    }
    if (waitpid(mPid, &mStatus, WNOHANG) == mPid) {
        mPid = 0;
        mExited = true;
        return false;
    }
    return true;
}

int ChildProcess::wait() {
    if (mPid > 0 && waitpid(mPid, &mStatus, 0) == mPid) {
        mPid = 0;
        mExited = true;
    }
    if (mReader.joinable()) {
        mReader.join();
    }
    return mExited && WIFEXITED(mStatus) ? WEXITSTATUS(mStatus) : -1;
}

int ChildProcess::stop() {
    if (mPid > 0) {
        kill(mPid, SIGTERM);
    }
    return wait();
}

bool ChildProcess::typeLine(const std::string& line) {
    const std::string text = line + "\n";
    return mInput >= 0 && write(mInput, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

std::string ChildProcess::output() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mHead + mTail;
}

std::string ChildProcess::waitForOutput(const std::string& pattern, std::chrono::milliseconds timeout) {
    const std::regex expression(pattern);
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    do {
        std::smatch match;
        const std::string text = output();
        if (std::regex_search(text, match, expression)) {
            return match.size() > 1 ? match[1].str() : match[0].str();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    } while (std::chrono::steady_clock::now() < deadline);
    return "";
}

long ChildProcess::residentKb() const {
    if (mPid <= 0) {
        return -1;
    }
    std::ifstream status("/proc/" + std::to_string(mPid) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::atol(line.c_str() + 6);
        }
    }
    return -1;
}
