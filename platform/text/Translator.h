// Translation of message keys into the user's language.
#pragma once

#include <string>

// Translates the phone's message keys ("xml.app.starting", "command.exit", ...) into user texts.
// Languages are chosen by the phone's language setting: a value starting with "de" (any case)
// selects German, anything else English. An unknown key translates to itself.
class Translator {
public:
    // `name` names the table set; every name shares the phone's common tables.
    explicit Translator(const std::string& name);

    const std::string& getName() const { return mName; }
    void setLanguage(const std::string& language);
    const std::string& getLanguage() const { return mLanguage; }
    std::string translate(const std::string& key) const;

private:
    std::string mName;
    std::string mLanguage;
};
