// Interface of the one element at a time that receives the presses of the phone's keypad.
#pragma once

class AGPKeyPressedListenerIfc {
public:
    // A keypad key: 1..9 the digits, 10 "*", 11 "#", 0 and anything else "0".
    virtual void keyPressed(int keyCode) = 0;
    // Another element took the keypad over.
    virtual void stopListening() = 0;

protected:
    ~AGPKeyPressedListenerIfc() = default;
};
