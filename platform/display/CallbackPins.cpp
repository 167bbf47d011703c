// The pins that keep widgets and commands alive while a listener is told about them.
#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "display/Core.h"

namespace DisplayAPI {
namespace core {

namespace {

// Its own small lock, never held while anything else is taken, so that a destructor can wait on
// it without the library lock.
struct PinTable {
    std::mutex lock;
    std::condition_variable released;
    std::vector<std::pair<const void*, std::thread::id>> pins;
};

PinTable& pinTable() {
    static auto* table = new PinTable(); // never destroyed: callbacks may end during exit
    return *table;
}

} // namespace

void CallbackPins::hold(std::initializer_list<const void*> objects) {
    PinTable& table = pinTable();
    std::lock_guard<std::mutex> lock(table.lock);
    for (const void* object : objects) {
        if (object != nullptr) {
            table.pins.emplace_back(object, std::this_thread::get_id());
            mHeld.push_back(object);
        }
    }
}

CallbackPins::~CallbackPins() {
    if (mHeld.empty()) {
        return;
    }
    PinTable& table = pinTable();
    {
        std::lock_guard<std::mutex> lock(table.lock);
        const auto self = std::this_thread::get_id();
        for (const void* object : mHeld) {
            auto pin = std::find(table.pins.begin(), table.pins.end(), std::make_pair(object, self));
            if (pin != table.pins.end()) {
                table.pins.erase(pin);
            }
        }
    }
    table.released.notify_all();
}

void awaitCallbacks(const void* object) {
    PinTable& table = pinTable();
    const auto self = std::this_thread::get_id();
    std::unique_lock<std::mutex> lock(table.lock);
    // A listener that deletes what it was given does so on its own thread and must not wait.
    table.released.wait(lock, [&table, object, self] {
        return std::none_of(table.pins.begin(), table.pins.end(), [object, self](const auto& pin) {
            return pin.first == object && pin.second != self;
        });
    });
}

} // namespace core
} // namespace DisplayAPI
