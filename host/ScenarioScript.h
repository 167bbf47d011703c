// Scenario scripts: a few lines that drive the phone and state what must be seen, for CI.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class EmulatedPhone;
class PhoneJournal;

// One command a line; blank lines and lines starting with '#' are skipped. Texts are the rest of
// the line after the command words (quotes are optional and removed).
//   press KEY...            keys by name: up down left right ok back softkey1..6 0-9 * #
//   type TEXT               text typed into the field being edited
//   push TYPE FIELDS        a server push: queue|indicate|force|active and form-encoded fields
//   wait text TEXT          until TEXT is on the screen (as the text view shows it)
//   wait request TEXT       until a request URL contains TEXT
//   wait idle               until the phone is settled (EmulatedPhone::waitUntilIdle)
//   expect title TEXT       the screen's (or popup's) title is TEXT
//   expect text TEXT        TEXT is on the screen now
//   expect no text TEXT     TEXT is not on the screen
//   expect request TEXT     a request URL so far contains TEXT
//   expect log TEXT         a log line so far contains TEXT
//   timeout SECONDS         how long waits wait from here on (default 10)
//   ring NUMBER             a call from NUMBER rings the phone
//   answer                  the newest unanswered call is answered (the far end of a call the
//                           application made, or the user for an incoming one)
//   hang up                 the newest call ends
//   expect call NUMBER      until a call from or to NUMBER is up
//   expect no calls         until no call is up
//   expect led on|off       until the application's LED is on (off)
//   expect tone short|standard|long  until that tone was played after the one taken before
class ScenarioScript {
public:
    struct Step {
        int line = 0;
        std::vector<std::string> words; // command words
        std::string text;               // the rest of the line
    };

    // Reads and checks the script. False with "<file>:<line>: <what>" problems.
    bool load(const std::string& path, std::vector<std::string>& problems);
    // Runs the steps in order. False with a report of the first step that failed.
    bool run(EmulatedPhone& phone, PhoneJournal& journal, std::string& report) const;

private:
    bool runStep(const Step& step, EmulatedPhone& phone, PhoneJournal& journal, int& timeoutSeconds,
                 std::string& seen) const;

    std::string mPath;
    // Beeps already matched by tone steps.
    mutable std::uint64_t mToneTaken = 0; // the sequence number of the beep the last step took
    std::vector<Step> mSteps;
};
