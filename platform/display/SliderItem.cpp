// Sliders.
#include "display/SliderItem.h"

#include <cerrno>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "text/TranslationInfo.h"

namespace DisplayAPI {

namespace {

bool parseNumber(const std::string& text, long& number) {
    if (text.empty()) {
        return false;
    }
    errno = 0;
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (errno != 0 || end == text.c_str() || *end != '\0') {
        return false;
    }
    number = value;
    return true;
}

} // namespace

SliderItem::SliderItem(const TranslationInfo* label) {
    if (label != nullptr) {
        setLabel(*label);
    }
}

SliderItem::~SliderItem() {
    retire();
}

void SliderItem::clampValue() {
    if (mMin <= mMax) {
        mValue = mValue < mMin ? mMin : (mValue > mMax ? mMax : mValue);
    }
}

void SliderItem::setMinValue(const std::string& value) {
    core::Lock lock(core::mutex());
    parseNumber(value, mMin);
    clampValue();
    core::changedLocked();
}

void SliderItem::setMaxValue(const std::string& value) {
    core::Lock lock(core::mutex());
    parseNumber(value, mMax);
    clampValue();
    core::changedLocked();
}

void SliderItem::setValue(const std::string& value) {
    core::Lock lock(core::mutex());
    parseNumber(value, mValue);
    clampValue();
    core::changedLocked();
}

void SliderItem::setInterval(const std::string& value) {
    core::Lock lock(core::mutex());
    long interval = 0;
    if (parseNumber(value, interval) && interval > 0) {
        mInterval = interval;
    }
}

std::string SliderItem::getValue() const {
    core::Lock lock(core::mutex());
    return std::to_string(mValue);
}

void SliderItem::setAutomatic(bool automatic) {
    core::Lock lock(core::mutex());
    mAutomatic = automatic;
    core::changedLocked();
}

bool SliderItem::isAutomatic() const {
    core::Lock lock(core::mutex());
    return mAutomatic;
}

bool SliderItem::itemKey(Key key) {
    if ((key != Key::Left && key != Key::Right) || mAutomatic) {
        return false;
    }
    const long before = mValue;
    mValue += key == Key::Left ? -mInterval : mInterval;
    clampValue();
    if (mValue != before) {
        notifyStateChanged();
    }
    return true;
}

void SliderItem::describeContent(nlohmann::json& out) const {
    out["min"] = mMin;
    out["max"] = mMax;
    out["value"] = mValue;
    out["interval"] = mInterval;
    out["automatic"] = mAutomatic;
}

} // namespace DisplayAPI
