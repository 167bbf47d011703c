// A screen's keypad entry: collects the digits typed while its screen is shown and sends them.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "AGPCommonBase.h"
#include "AGPKeyPressedListenerIfc.h"
#include "AGPScreenFocusListenerIfc.h"

class AGPSendURLListenerIfc;
class AGPUrl;
class AGPUrlKey;

// Lifetime: part of its document's tree. While it listens it is registered with the keys
// handler, which calls keyPressed under its lock on the thread of the key event; the destructor
// unregisters under that lock first, so no key reaches a deleted element. The tree is deleted
// children first, so the screen (send listener) and the list's Url (target URL) outlive it.
class AGPIppKey : public AGPCommonBase, public AGPKeyPressedListenerIfc, public AGPScreenFocusListenerIfc {
public:
    enum AGPKeypad : std::int32_t { KEYPAD_NO = 0, KEYPAD_YES = 1 };
    enum AGPSendKeys : std::int32_t { SENDKEYS_NO = 0, SENDKEYS_YES = 1 };
    enum AGPBufferKeys : std::int32_t { BUFFER_NO = 0, BUFFER_YES = 1, BUFFER_SUBSEQUENT = 2 };

    AGPIppKey();
    AGPIppKey(const AGPIppKey&) = delete;
    AGPIppKey& operator=(const AGPIppKey&) = delete;
    ~AGPIppKey() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppKey; }
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return mUrlKeyGiven; }
    void initializeElement() override;
    void hideElement() override;

    virtual void setSendURLListener(AGPSendURLListenerIfc* listener) { mSendListener = listener; }
    virtual AGPSendURLListenerIfc* getSendURLListener() { return mSendListener; }
    void keyPressed(int keyCode) override;
    void stopListening() override;
    void screenGainedFocus() override;
    void screenLostFocus() override;

    // The screen's list Url that the keys go to (Url element of the same tree).
    void setTargetUrl(AGPUrl* url) { mTargetUrl = url; }
    void setSendKeys(AGPSendKeys sendKeys) { mSendKeys = sendKeys; }
    AGPSendKeys getSendKeys() const { return mSendKeys; }
    AGPBufferKeys getBufferKeys() const { return mBufferKeys; }
    const std::string& getUrlKeyText() const;

    // "1".."9" for codes 1..9, "*" for 10, "#" for 11, "0" for anything else.
    static std::string keyText(int keyCode);

private:
    bool sendKeys();
    // Appends a key; sends and stops when the buffer is full or the key ends collecting.
    void collectKey(const std::string& key);
    void unsubscribe();

    AGPKeypad mKeypad;
    AGPSendKeys mSendKeys;
    AGPBufferKeys mBufferKeys;
    std::uint32_t mBufferLength;
    std::string mTermKey;
    AGPUrlKey* mUrlKey;
    bool mUrlKeyGiven;
    AGPSendURLListenerIfc* mSendListener;
    std::string mBuffer;
    AGPUrl* mTargetUrl;
    bool mFirstKeySent;
    std::atomic<bool> mActive; // read by key delivery, set when the screen gains the focus
};
