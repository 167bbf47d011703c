// Key names and codes, and the display's input entry points.
#include "display/Input.h"

#include "display/Display.h"
#include "display/Displayable.h"
#include "events/EventLoop.h"

namespace DisplayAPI {

namespace {

struct KeyInfo {
    Key key;
    const char* name;
    char character;
    int keypadCode;
};

const KeyInfo keyTable[] = {
    {Key::SoftKey1, "softkey1", 0, -1},
    {Key::SoftKey2, "softkey2", 0, -1},
    {Key::SoftKey3, "softkey3", 0, -1},
    {Key::SoftKey4, "softkey4", 0, -1},
    {Key::SoftKey5, "softkey5", 0, -1},
    {Key::SoftKey6, "softkey6", 0, -1},
    {Key::Up, "up", 0, -1},
    {Key::Down, "down", 0, -1},
    {Key::Left, "left", 0, -1},
    {Key::Right, "right", 0, -1},
    {Key::Ok, "ok", 0, -1},
    {Key::Back, "back", 0, -1},
    {Key::Digit0, "0", '0', 0},
    {Key::Digit1, "1", '1', 1},
    {Key::Digit2, "2", '2', 2},
    {Key::Digit3, "3", '3', 3},
    {Key::Digit4, "4", '4', 4},
    {Key::Digit5, "5", '5', 5},
    {Key::Digit6, "6", '6', 6},
    {Key::Digit7, "7", '7', 7},
    {Key::Digit8, "8", '8', 8},
    {Key::Digit9, "9", '9', 9},
    {Key::Star, "*", '*', 10},
    {Key::Hash, "#", '#', 11},
};

const KeyInfo& infoOf(Key key) {
    return keyTable[static_cast<int>(key)];
}

} // namespace

Key softKey(int number) {
    return number >= 1 && number <= 6 ? static_cast<Key>(static_cast<int>(Key::SoftKey1) + number - 1)
                                      : Key::SoftKey1;
}

int softKeyNumber(Key key) {
    const int index = static_cast<int>(key) - static_cast<int>(Key::SoftKey1);
    return index >= 0 && index < 6 ? index + 1 : 0;
}

char keyCharacter(Key key) {
    return infoOf(key).character;
}

int keypadCode(Key key) {
    return infoOf(key).keypadCode;
}

const char* keyName(Key key) {
    return infoOf(key).name;
}

bool keyFromName(const std::string& name, Key& key) {
    for (const KeyInfo& info : keyTable) {
        if (name == info.name) {
            key = info.key;
            return true;
        }
    }
    return false;
}

bool Display::pressKey(Key key) {
    core::Lock lock(core::mutex());
    if (!mShown) {
        return false;
    }
    Displayable* target = getCurrent();
    const bool handled = target != nullptr && target->handleKey(key);
    const int code = keypadCode(key);
    if (!handled && code >= 0 && !mKeypadSending && mKeypadObserver) {
        const auto observer = mKeypadObserver;
        mLoop.post([observer, code] { observer(code); });
    }
    return handled;
}

bool Display::typeText(const std::string& text, bool replace) {
    core::Lock lock(core::mutex());
    Displayable* target = getCurrent();
    return mShown && target != nullptr && target->handleText(text, replace);
}

} // namespace DisplayAPI
