// What the host gives a phonelet at init.
#include "phonelet/Context.h"

DisplayAPI::Display* Context::getDisplay() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mDisplay;
}

PlatformService* Context::getService(const std::string& name) const {
    std::lock_guard<std::mutex> lock(mMutex);
    auto found = mServices.find(name);
    return found == mServices.end() ? nullptr : found->second;
}

std::string Context::getApplicationName() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mApplicationName;
}

std::string Context::getDateFormat() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mDateFormat;
}

std::string Context::getTimeFormat() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mTimeFormat;
}

std::string Context::getLocale() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mLocale;
}

void Context::setDisplay(DisplayAPI::Display* display) {
    std::lock_guard<std::mutex> lock(mMutex);
    mDisplay = display;
}

void Context::setService(const std::string& name, PlatformService* service) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (service == nullptr) {
        mServices.erase(name);
    } else {
        mServices[name] = service;
    }
}

void Context::setApplicationName(const std::string& name) {
    std::lock_guard<std::mutex> lock(mMutex);
    mApplicationName = name;
}

void Context::setDateFormat(const std::string& format) {
    std::lock_guard<std::mutex> lock(mMutex);
    mDateFormat = format;
}

void Context::setTimeFormat(const std::string& format) {
    std::lock_guard<std::mutex> lock(mMutex);
    mTimeFormat = format;
}

void Context::setLocale(const std::string& locale) {
    std::lock_guard<std::mutex> lock(mMutex);
    mLocale = locale;
}
