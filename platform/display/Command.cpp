// Commands and the registry of live commands.
#include "display/Command.h"

#include <array>
#include <unordered_set>

namespace DisplayAPI {

namespace {

std::unordered_set<const Command*>& liveCommands() {
    static auto* live = new std::unordered_set<const Command*>();
    return *live;
}

} // namespace

Command::Command(const std::string& label, Type type) : mLabel(label), mType(type) {
    registerLive();
}

Command::Command(const TranslationInfo& label, Type type)
    : mLabel(label.getKey()), mTranslatedLabel(label), mType(type) {
    registerLive();
}

void Command::registerLive() {
    core::Lock lock(core::mutex());
    liveCommands().insert(this);
}

Command::~Command() {
    {
        core::Lock lock(core::mutex());
        liveCommands().erase(this);
        mLife.end();
        core::changedLocked();
    }
    // A listener told about this command keeps it until it returns.
    core::awaitCallbacks(this);
}

bool Command::exists(const Command* command) {
    core::Lock lock(core::mutex());
    return command != nullptr && liveCommands().count(command) != 0;
}

Command* Command::standard(Type type) {
    static const char* const labels[] = {"Error", "Back",    "Cancel",  "Exit",         "Help",
                                         "Item",  "OK",      "Screen",  "Stop",         "Right",
                                         "Timer", "Save",    "Delete",  "Skip back",    "Skip forward",
                                         "Pause", "Tab bar", "Content", "Previous tab", "Next tab"};
    // Built once and never deleted: callbacks may carry them at any time, even during shutdown.
    static std::array<Command*, 20>* commands = [] {
        auto* all = new std::array<Command*, 20>();
        for (int t = 0; t < 20; ++t) {
            (*all)[t] = new Command(labels[t], static_cast<Type>(t));
        }
        return all;
    }();
    const int index = static_cast<int>(type);
    return index >= 0 && index < 20 ? (*commands)[index] : (*commands)[0];
}

Command::Type Command::getType() const {
    core::Lock lock(core::mutex());
    return mType;
}

std::string Command::getBasicText() const {
    core::Lock lock(core::mutex());
    return mTranslatedLabel ? mTranslatedLabel->getText() : mLabel;
}

void Command::setOwnerId(unsigned long id) {
    core::Lock lock(core::mutex());
    mOwnerId = id;
}

unsigned long Command::getOwnerId() const {
    core::Lock lock(core::mutex());
    return mOwnerId;
}

} // namespace DisplayAPI
