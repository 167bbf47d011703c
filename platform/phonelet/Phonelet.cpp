// The plug-in base class of phone applications.
#include "phonelet/Phonelet.h"

#include "phonelet/PhoneletManagerIfc.h"

Phonelet::~Phonelet() {
    deregisterFromPhoneletManager();
}

void Phonelet::init(Context&) {}

void Phonelet::shutdown() {
    deregisterFromPhoneletManager();
}

void Phonelet::timerEvent(int) {}

std::string Phonelet::getInterfaces() {
    return "PhoneletIfc";
}

void Phonelet::startPhonelet() {}

void Phonelet::stopPhonelet() {}

void Phonelet::hide() {}

void Phonelet::show() {}

void Phonelet::tab() {}

void Phonelet::pause() {}

void Phonelet::resume() {}

void Phonelet::localeChanged(std::string) {}

void Phonelet::dateFormatChanged(std::string) {}

void Phonelet::timeFormatChanged(std::string) {}

void Phonelet::tabStatusChange(bool) {}

int Phonelet::push(const std::string&, const std::string&, int) {
    return 0;
}

void Phonelet::RequestFocus() {
    if (PhoneletManagerIfc* manager = getPhoneletManager()) {
        manager->requestFocus(this);
    }
}

void Phonelet::GrabFocus() {
    if (PhoneletManagerIfc* manager = getPhoneletManager()) {
        manager->grabFocus(this);
    }
}

void Phonelet::ReleaseFocus() {
    if (PhoneletManagerIfc* manager = getPhoneletManager()) {
        manager->releaseFocus(this);
    }
}

std::string Phonelet::GetPhoneletName() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mName;
}

void Phonelet::setPhoneletName(const std::string& name) {
    std::lock_guard<std::mutex> lock(mMutex);
    mName = name;
}

void Phonelet::notifyLocaleChange(const std::string& language) {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mNotifiedLocale = language;
    }
    if (PhoneletManagerIfc* manager = getPhoneletManager()) {
        manager->localeNotified(this, language);
    }
}

std::string Phonelet::getNotifiedLocale() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mNotifiedLocale;
}

void Phonelet::deregisterFromPhoneletManager() {
    if (PhoneletManagerIfc* manager = mPhoneletManager.exchange(nullptr)) {
        manager->deregisterPhonelet(this);
    }
}
