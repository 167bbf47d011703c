// Menu entries and highlight.
#include "display/MenuModel.h"

#include "display/Command.h"

namespace DisplayAPI {

void MenuModel::add(Command* command) {
    if (command == nullptr) {
        return;
    }
    mEntries.emplace_back(command->ref());
    if (mHighlight < 0) {
        mHighlight = 0;
    }
}

void MenuModel::remove(const Command* command) {
    std::vector<core::Ref<Command>> kept;
    for (const auto& entry : mEntries) {
        if (entry.get() != nullptr && entry.get() != command) {
            kept.push_back(entry);
        }
    }
    mEntries.swap(kept);
    setHighlight(mHighlight);
}

void MenuModel::clear() {
    mEntries.clear();
    mHighlight = -1;
}

std::vector<Command*> MenuModel::entries() const {
    std::vector<Command*> live;
    for (const auto& entry : mEntries) {
        if (Command* command = entry.get()) {
            live.push_back(command);
        }
    }
    return live;
}

int MenuModel::highlight() const {
    const int count = static_cast<int>(entries().size());
    if (count == 0) {
        return -1;
    }
    return mHighlight < 0 ? 0 : (mHighlight >= count ? count - 1 : mHighlight);
}

void MenuModel::setHighlight(int index) {
    const int count = static_cast<int>(entries().size());
    mHighlight = count == 0 ? -1 : (index < 0 ? 0 : (index >= count ? count - 1 : index));
}

Command* MenuModel::highlighted() const {
    const auto live = entries();
    const int index = highlight();
    return index < 0 ? nullptr : live[static_cast<std::size_t>(index)];
}

void MenuModel::move(int step, bool wrap) {
    const int count = static_cast<int>(entries().size());
    if (count == 0) {
        return;
    }
    int next = highlight() + step;
    if (wrap) {
        next = (next % count + count) % count;
    }
    setHighlight(next);
}

} // namespace DisplayAPI
