// Translation of message keys into the user's language.
#pragma once

#include <mutex>
#include <string>

// Translates the phone's message keys ("xml.app.starting", "command.exit", ...) into user texts.
// Languages are chosen by the phone's language setting: a value starting with "de" (any case)
// selects German, anything else English. An unknown key translates to itself. The language may be
// changed on one thread while others translate.
class Translator {
public:
    // `name` names the table set; every name shares the phone's common tables.
    explicit Translator(const std::string& name);

    const std::string& getName() const { return mName; }
    void setLanguage(const std::string& language);
    std::string getLanguage() const;
    std::string translate(const std::string& key) const;

private:
    std::string mName;
    mutable std::mutex mLanguageLock;
    std::string mLanguage;
};
