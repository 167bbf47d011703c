// Keys typed in the terminal for the text view: a person can use the phone without the web page.
#pragma once

#include <atomic>
#include <thread>

class EmulatedPhone;

// Reads lines from standard input, a terminal or a pipe: key names separated by blanks ("down ok",
// "softkey1", "5"), "type TEXT" for text, "quit" to end. Unknown words are answered with the list of keys.
class TerminalKeys {
public:
    // Does nothing when `enabled` is false (no text view). At the end of the input the phone runs
    // on until it is stopped.
    TerminalKeys(EmulatedPhone& phone, bool enabled);
    // The reader thread is left to the process's end: a read from a terminal cannot be interrupted.
    ~TerminalKeys() = default;
    TerminalKeys(const TerminalKeys&) = delete;
    TerminalKeys& operator=(const TerminalKeys&) = delete;

private:
    void readLines();

    EmulatedPhone& mPhone;
};
