// A screen's keypad entry: collects the digits typed while its screen is shown and sends them.
#include "AGPIppKey.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppKey.cpp"

#include <map>
#include <sstream>
#include <string_view>

#include "AGPKeysHandler.h"
#include "AGPLog.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPSendURLListenerIfc.h"
#include "AGPUrl.h"
#include "AGPUrlKey.h"
#include "AGPUtils.h"

using namespace std::string_view_literals;

AGPIppKey::AGPIppKey()
    : mKeypad(KEYPAD_NO), mSendKeys(SENDKEYS_NO), mBufferKeys(BUFFER_NO), mBufferLength(0),
      mUrlKey(new AGPUrlKey("digit")), mUrlKeyGiven(false), mSendListener(nullptr), mTargetUrl(nullptr),
      mFirstKeySent(false), mActive(false) {
    registerElement();
}

AGPIppKey::~AGPIppKey() {
    unsubscribe();
    removeScreenFocusListener(this);
    unregisterElement();
    delete mUrlKey;
}

bool AGPIppKey::addAttribute(std::string& name, std::string& value) {
    if (name == "UrlKey"sv) {
        AGPUrlKey* parsed = AGPUrlKey::parseAGPUrlKey(value);
        if (parsed == nullptr ||
            AGPObjectPool::isPooled(*parsed, AGPObjectPool::getAGPUrlKey_PARSE_FAILED())) {
            delete parsed;
            return false;
        }
        delete mUrlKey;
        mUrlKey = parsed;
        mUrlKeyGiven = true;
        return true;
    }
    if (name == "SendKeys"sv) {
        mSendKeys = value == "YES" ? SENDKEYS_YES : SENDKEYS_NO;
        return true;
    }
    if (name == "Keypad"sv) {
        mKeypad = value == "YES" ? KEYPAD_YES : KEYPAD_NO;
        return true;
    }
    if (name == "BufferKeys"sv) {
        mBufferKeys = value == "YES" ? BUFFER_YES : value == "SUBSEQUENT" ? BUFFER_SUBSEQUENT : BUFFER_NO;
        return true;
    }
    if (name == "BufferLength"sv) {
        long length = 0;
        mBufferLength = AGPUtils::stringToLong(value, length) && length > 0 && length <= 0xFFFFFFFFL
                            ? static_cast<std::uint32_t>(length)
                            : 0;
        return true;
    }
    if (name == "TermKey"sv) {
        std::istringstream words(value);
        mTermKey.clear();
        words >> mTermKey;
        return true;
    }
    return false;
}

void AGPIppKey::initializeElement() {
    addScreenFocusListener(this);
}

const std::string& AGPIppKey::getUrlKeyText() const {
    return mUrlKey->getValueText();
}

std::string AGPIppKey::keyText(int keyCode) {
    if (keyCode >= 1 && keyCode <= 9) {
        return std::string(1, static_cast<char>('0' + keyCode));
    }
    if (keyCode == 10) {
        return "*";
    }
    if (keyCode == 11) {
        return "#";
    }
    return "0";
}

void AGPIppKey::screenGainedFocus() {
    if (mKeypad != KEYPAD_YES || mSendKeys != SENDKEYS_YES) {
        return;
    }
    AGPKeysHandler* keys = AGPPhoneletManager::findAGPKeysHandler();
    if (keys != nullptr) {
        mActive = true;
        keys->registerKeyPressedListener(this);
    }
}

void AGPIppKey::screenLostFocus() {
    unsubscribe();
}

void AGPIppKey::unsubscribe() {
    AGPKeysHandler* keys = AGPPhoneletManager::findAGPKeysHandler();
    if (keys != nullptr) {
        keys->unregisterKeyPressedListener(this);
    }
}

// Runs under the keys handler's lock; that lock also guards the buffer and the flags.
void AGPIppKey::keyPressed(int keyCode) {
    const std::string key = keyText(keyCode);
    if (!mActive) {
        AGP_LOG(6, "AGPIppKey: key pressed event ignored: %dn", keyCode);
        return;
    }
    AGP_LOG(6, "AGPIppKey: key pressed event received: %d \n", keyCode);
    switch (mBufferKeys) {
    case BUFFER_NO:
        mBuffer = key;
        sendKeys();
        mBuffer.clear();
        mActive = false;
        break;
    case BUFFER_SUBSEQUENT:
        if (!mFirstKeySent) {
            mBuffer = key;
            sendKeys();
            mFirstKeySent = true;
            mBuffer.clear();
            break;
        }
        collectKey(key);
        break;
    case BUFFER_YES:
        collectKey(key);
        break;
    default:
        break;
    }
}

void AGPIppKey::collectKey(const std::string& key) {
    mBuffer += key;
    if (mBuffer.size() < mBufferLength && key != mTermKey) {
        return;
    }
    sendKeys();
    mBuffer.clear();
    mActive = false;
}

bool AGPIppKey::sendKeys() {
    if (mSendListener == nullptr || mTargetUrl == nullptr || mUrlKey == nullptr) {
        return false;
    }
    std::multimap<std::string, std::string> pairs{{mUrlKey->getValueText(), mBuffer}};
    std::string url = mTargetUrl->getContent();
    mSendListener->sendURL(nullptr, pairs, url);
    return true;
}

// Once unregistered no key press runs any more, so the buffer is this thread's alone.
void AGPIppKey::stopListening() {
    unsubscribe();
    if (mBufferKeys == BUFFER_SUBSEQUENT && !mBuffer.empty() && mActive) {
        sendKeys();
        mActive = false;
    }
}

void AGPIppKey::hideElement() {
    stopListening();
}
