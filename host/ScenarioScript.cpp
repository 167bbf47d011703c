// Scenario scripts: a few lines that drive the phone and state what must be seen, for CI.
#include "ScenarioScript.h"

#include <cctype>
#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "EmulatedPhone.h"
#include "PhoneJournal.h"
#include "PushEndpoint.h"
#include "TextRenderer.h"
#include "display/Input.h"

namespace {

struct Grammar {
    const char* command;
    int words;      // command words before the text
    bool needsText; // the step needs a text (or key names)
};

const Grammar kGrammar[] = {{"press", 1, true},        {"type", 1, true},
                            {"push", 1, true},         {"wait text", 2, true},
                            {"wait request", 2, true}, {"wait idle", 2, false},
                            {"expect title", 2, true}, {"expect no text", 3, true},
                            {"expect text", 2, true},  {"expect request", 2, true},
                            {"expect log", 2, true},   {"timeout", 1, true},
                            {"ring", 1, true},         {"answer", 1, false},
                            {"hang up", 2, false},     {"expect no calls", 3, false},
                            {"expect call", 2, true},  {"expect led", 2, true},
                            {"expect tone", 2, true}};

// The system beep of each tone name.
int beepOfTone(const std::string& name) {
    return name == "short" ? 2 : name == "standard" ? 3 : name == "long" ? 4 : 0;
}

// The newest call that is not yet answered (answer), or the newest call (hang up); "" for none.
std::string newestCall(EmulatedPhone& phone, bool unansweredOnly) {
    const auto calls = phone.callControl().calls();
    for (auto call = calls.rbegin(); call != calls.rend(); ++call) {
        if (!unansweredOnly || !call->answered) {
            return call->callId;
        }
    }
    return "";
}

std::string trim(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) {
        return "";
    }
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string unquote(std::string text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        return text.substr(1, text.size() - 2);
    }
    return text;
}

std::vector<std::string> words(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> result;
    std::string word;
    while (stream >> word) {
        result.push_back(word);
    }
    return result;
}

std::string lowerCase(std::string text) {
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

std::string screenText(EmulatedPhone& phone) {
    phone.display().waitUntilSettled();
    return TextRenderer::render(phone.display().snapshot());
}

std::string titleOf(const nlohmann::json& snapshot) {
    for (const char* part : {"popup", "screen"}) {
        const nlohmann::json widget = snapshot.value(part, nlohmann::json());
        if (widget.is_object() && widget.value("title", nlohmann::json()).is_string()) {
            return widget["title"].get<std::string>();
        }
    }
    return "";
}

bool anyContains(const nlohmann::json& entries, const char* field, const std::string& text,
                 std::string& seen) {
    seen.clear();
    for (const nlohmann::json& entry : entries) {
        const std::string value = entry.value(field, "");
        if (value.find(text) != std::string::npos) {
            return true;
        }
        seen += value + "\n";
    }
    return false;
}

template <typename Check> bool waitUntil(int timeoutSeconds, Check check) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
    while (!check()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

// The second command word, "" for one-word commands.
std::string kind(const ScenarioScript::Step& step) {
    return step.words.size() > 1 ? step.words[1] : "";
}

} // namespace

bool ScenarioScript::load(const std::string& path, std::vector<std::string>& problems) {
    mPath = path;
    std::ifstream in(path);
    if (!in) {
        problems.push_back(path + ": cannot read the script");
        return false;
    }
    const size_t before = problems.size();
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        line = trim(line);
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const std::vector<std::string> all = words(line);
        const Grammar* match = nullptr;
        for (const Grammar& grammar : kGrammar) {
            const std::vector<std::string> command = words(grammar.command);
            if (all.size() >= command.size() && std::equal(command.begin(), command.end(), all.begin()) &&
                match == nullptr) {
                match = &grammar;
            }
        }
        auto problem = [&](const std::string& what) {
            problems.push_back(path + ":" + std::to_string(number) + ": " + what);
        };
        if (match == nullptr) {
            problem("unknown command '" + all[0] + "'");
            continue;
        }
        Step step;
        step.line = number;
        step.words = words(match->command);
        size_t at = 0;
        for (int i = 0; i < match->words; ++i) {
            at =
                line.find(step.words[static_cast<size_t>(i)], at) + step.words[static_cast<size_t>(i)].size();
        }
        step.text = unquote(trim(line.substr(at)));
        if (match->needsText && step.text.empty()) {
            problem("'" + std::string(match->command) + "' needs a text");
            continue;
        }
        if (step.words[0] == "press") {
            for (const std::string& name : words(step.text)) {
                DisplayAPI::Key key;
                if (!DisplayAPI::keyFromName(lowerCase(name), key)) {
                    problem("unknown key '" + name + "'");
                }
            }
        } else if (step.words[0] == "push" && PushEndpoint::pushType(words(step.text)[0]) == 0) {
            problem("push type must be queue, indicate, force or active, not '" + words(step.text)[0] + "'");
        } else if (step.words[0] == "wait" && step.words[1] == "idle" && !step.text.empty()) {
            problem("'wait idle' takes no text");
        } else if (step.words[0] == "expect" && kind(step) == "led" && step.text != "on" &&
                   step.text != "off") {
            problem("expect led takes on or off, not '" + step.text + "'");
        } else if (step.words[0] == "expect" && kind(step) == "tone" && beepOfTone(step.text) == 0) {
            problem("expect tone takes short, standard or long, not '" + step.text + "'");
        } else if (step.words[0] == "timeout" &&
                   step.text.find_first_not_of("0123456789") != std::string::npos) {
            problem("timeout takes whole seconds, not '" + step.text + "'");
        }
        mSteps.push_back(step);
    }
    return problems.size() == before;
}

bool ScenarioScript::run(EmulatedPhone& phone, PhoneJournal& journal, std::string& report) const {
    int timeoutSeconds = 10;
    for (const Step& step : mSteps) {
        std::string seen;
        if (!runStep(step, phone, journal, timeoutSeconds, seen)) {
            std::string command;
            for (const std::string& word : step.words) {
                command += (command.empty() ? "" : " ") + word;
            }
            const std::string text = step.text.empty() ? "" : " \"" + step.text + "\"";
            report = mPath + ":" + std::to_string(step.line) + ": " + command + text +
                     " failed\n--- seen ---\n" + seen + (seen.empty() || seen.back() == '\n' ? "" : "\n");
            return false;
        }
    }
    return true;
}

bool ScenarioScript::runStep(const Step& step, EmulatedPhone& phone, PhoneJournal& journal,
                             int& timeoutSeconds, std::string& seen) const {
    const std::string& command = step.words[0];
    const std::string kind = step.words.size() > 1 ? step.words[1] : "";
    if (command == "press") {
        for (const std::string& name : words(step.text)) {
            DisplayAPI::Key key;
            DisplayAPI::keyFromName(lowerCase(name), key);
            phone.display().pressKey(key);
            phone.display().waitUntilSettled();
        }
        return true;
    }
    if (command == "type") {
        phone.display().typeText(step.text);
        phone.display().waitUntilSettled();
        return true;
    }
    if (command == "push") {
        const std::vector<std::string> parts = words(step.text);
        seen = "the push was refused";
        return parts.size() > 1 && phone.push(parts[1], phone.context().getApplicationName(),
                                              PushEndpoint::pushType(parts[0]), "scenario script") == 1;
    }
    if (command == "timeout") {
        timeoutSeconds = std::stoi(step.text);
        return true;
    }
    if (command == "ring") {
        const std::string callId = phone.callControl().ringIncoming(step.text, seen);
        return !callId.empty();
    }
    if (command == "answer" || command == "hang") {
        const std::string callId = newestCall(phone, command == "answer");
        seen = callId.empty() ? "no call to " + command : phone.describeCalls().dump(1);
        return !callId.empty() && (command == "answer" ? phone.callControl().answerCall(callId)
                                                       : phone.callControl().hangUp(callId));
    }
    if (kind == "call" || (kind == "no" && step.words.size() > 2 && step.words[2] == "calls")) {
        return waitUntil(timeoutSeconds, [&] {
            const nlohmann::json calls = phone.describeCalls();
            seen = calls.dump(1);
            if (kind == "no") {
                return calls.empty();
            }
            for (const auto& call : calls) {
                if (call["calling"] == step.text || call["called"] == step.text) {
                    return true;
                }
            }
            return false;
        });
    }
    if (kind == "led") {
        return waitUntil(timeoutSeconds, [&] {
            const bool on = phone.describeState()["led"].get<bool>();
            seen = on ? "the LED is on" : "the LED is off";
            return on == (step.text == "on");
        });
    }
    if (kind == "tone") {
        // Each expected tone takes the first matching beep after the one the last step took.
        return waitUntil(timeoutSeconds, [&] {
            const auto beeps = phone.media().beeps();
            seen = "beeps played:";
            for (size_t i = 0; i < beeps.size(); ++i) {
                seen += " " + std::to_string(beeps[i].beepNumber);
                if (beeps[i].sequence > mToneTaken && beeps[i].beepNumber == beepOfTone(step.text)) {
                    mToneTaken = beeps[i].sequence;
                    return true;
                }
            }
            return false;
        });
    }
    const bool negate = step.words.size() > 2 && step.words[1] == "no" && step.words[2] == "text";
    auto textOnScreen = [&] {
        seen = screenText(phone);
        return (seen.find(step.text) != std::string::npos) != negate;
    };
    auto requestMade = [&] { return anyContains(journal.requests(0), "url", step.text, seen); };
    if (command == "wait" && kind == "idle") {
        std::string busy;
        const bool idle = phone.waitUntilIdle(std::chrono::seconds(timeoutSeconds), busy);
        seen = "still busy: " + busy;
        return idle;
    }
    if (command == "wait") {
        return kind == "text" ? waitUntil(timeoutSeconds, textOnScreen)
                              : waitUntil(timeoutSeconds, requestMade);
    }
    if (kind == "title") {
        phone.display().waitUntilSettled();
        seen = titleOf(phone.display().snapshot());
        return seen == step.text;
    }
    if (kind == "request") {
        return requestMade();
    }
    if (kind == "log") {
        return anyContains(journal.logLines(0, "", 6), "text", step.text, seen);
    }
    return textOnScreen();
}
