// The ticker line.
#include "display/Ticker.h"

#include "display/Core.h"

namespace DisplayAPI {

Ticker::Ticker(const std::string& text) : mData(std::make_shared<TickerData>()) {
    mData->text = text;
}

Ticker::~Ticker() {
    core::Lock lock(core::mutex());
    mData.reset();
    core::changedLocked();
}

void Ticker::setText(const std::string& text) {
    core::Lock lock(core::mutex());
    mData->text = text;
    core::changedLocked();
}

std::string Ticker::getText() const {
    core::Lock lock(core::mutex());
    return mData->text;
}

void Ticker::setOwnerId(unsigned long id) {
    core::Lock lock(core::mutex());
    mData->ownerId = id;
}

unsigned long Ticker::getOwnerId() const {
    core::Lock lock(core::mutex());
    return mData->ownerId;
}

} // namespace DisplayAPI
