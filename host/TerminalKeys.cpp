// Keys typed in the terminal for the text view: a person can use the phone without the web page.
#include "TerminalKeys.h"

#include <signal.h>
#include <unistd.h>

#include <cctype>
#include <iostream>
#include <sstream>
#include <string>

#include "EmulatedPhone.h"
#include "display/Input.h"

TerminalKeys::TerminalKeys(EmulatedPhone& phone, bool enabled) : mPhone(phone) {
    if (enabled) {
        std::cout << "Keys: up down left right ok back softkey1..softkey6 0-9 * #, type TEXT, quit\n"
                  << std::flush;
        std::thread([this] { readLines(); }).detach();
    }
}

void TerminalKeys::readLines() {
    std::string line;
    while (std::getline(std::cin, line)) {
        if (line.rfind("type ", 0) == 0) {
            mPhone.display().typeText(line.substr(5));
            mPhone.display().waitUntilSettled();
            continue;
        }
        std::istringstream words(line);
        std::string word;
        while (words >> word) {
            for (char& c : word) {
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            }
            DisplayAPI::Key key;
            if (word == "quit") {
                kill(getpid(), SIGTERM); // ends the program the way Ctrl-C does
                return;
            }
            if (DisplayAPI::keyFromName(word, key)) {
                // Piped lines come faster than a person types: each key's effects are on the
                // screen before the next key.
                mPhone.display().pressKey(key);
                mPhone.display().waitUntilSettled();
            } else {
                std::cout << "unknown key '" << word << "'\n" << std::flush;
            }
        }
    }
}
