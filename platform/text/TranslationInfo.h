// A translatable label: a message key and the translator that turns it into text.
#pragma once

#include <string>

class Translator;

// Widgets keep the key and translate it when they are drawn, so a later language change
// reaches labels made before it. Without a translator the key is shown in English.
class TranslationInfo {
public:
    explicit TranslationInfo(const std::string& key, const Translator* translator = nullptr)
        : mKey(key), mTranslator(translator) {}

    const std::string& getKey() const { return mKey; }
    std::string getText() const;

private:
    std::string mKey;
    const Translator* mTranslator;
};
