// Platform threads on std::thread, kept in a process-wide table by id.
#include "threads/Threader.h"

#include "logging/Log.h"

#include <pthread.h>

#include <map>
#include <mutex>
#include <system_error>
#include <thread>

#include "threads/ThreadActivity.h"

namespace {

std::mutex gTableMutex;
std::map<unsigned long, std::thread> gThreads;
unsigned long gNextId = 1;

void nameCurrentThread(const std::string& name) {
    // The kernel keeps at most 15 characters of a thread name.
    pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
    setLogThreadName(name);
}

} // namespace

int Threader::start(unsigned long* threadId, Threadable* body, const std::string& name, int, int) {
    if (threadId == nullptr || body == nullptr) {
        return 0;
    }
    std::lock_guard<std::mutex> lock(gTableMutex);
    const unsigned long id = gNextId++;
    const std::string threadName = name.empty() ? "agp-" + std::to_string(id) : name;
    // Counted from here, so that a thread not yet waiting for work counts as busy.
    ThreadActivity::threadStarted();
    try {
        gThreads.emplace(id, std::thread([body, threadName] {
                             nameCurrentThread(threadName);
                             body->run();
                             ThreadActivity::threadEnded();
                         }));
    } catch (const std::system_error&) {
        ThreadActivity::threadEnded();
        return 0;
    }
    *threadId = id;
    return 1;
}

bool Threader::wait(unsigned long threadId) {
    std::thread thread;
    {
        std::lock_guard<std::mutex> lock(gTableMutex);
        auto found = gThreads.find(threadId);
        if (found == gThreads.end() || found->second.get_id() == std::this_thread::get_id()) {
            return false;
        }
        thread = std::move(found->second);
        gThreads.erase(found);
    }
    thread.join();
    return true;
}
