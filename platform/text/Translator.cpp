// The phone's translation tables (English and German) and their lookup.
#include "text/Translator.h"

#include <cctype>
#include <map>

#include "text/TranslationInfo.h"

namespace {

using Table = std::map<std::string, std::string>;

const Table& englishTable() {
    static const Table table = {
        {"xml.app.starting", "Starting application..."},
        {"xml.app.failed", "The application could not be started"},
        {"xml.app.error.network", "The application server cannot be reached"},
        {"xml.app.error.parser", "The application sent a document that cannot be read"},
        {"xml.app.error.display", "The application sent a screen that cannot be shown"},
        {"xml.app.error.memory", "The phone ran out of memory for the application"},
        {"xml.app", "XML application"},
        {"xml.app.error.details", "Details"},
        {"xml.app.exit.hint", "Press Exit to close the application"},
        {"command.exit", "Exit"},
        {"command.cancel", "Cancel"},
        {"command.select", "Select"},
        {"selectionfield.options", "Options"},
        {"list.options", "Options"},
        {"alert.dismiss", "OK"},
        {"alert.numberformat.title", "Invalid number"},
        {"alert.numberformat.msg", "Please enter digits only."},
    };
    return table;
}

const Table& germanTable() {
    static const Table table = {
        {"xml.app.starting", "Anwendung wird gestartet..."},
        {"xml.app.failed", "Die Anwendung konnte nicht gestartet werden"},
        {"xml.app.error.network", "Der Anwendungsserver ist nicht erreichbar"},
        {"xml.app.error.parser", "Die Anwendung hat ein unlesbares Dokument gesendet"},
        {"xml.app.error.display", "Die Anwendung hat eine nicht darstellbare Seite gesendet"},
        {"xml.app.error.memory", "Dem Telefon fehlt Speicher für die Anwendung"},
        {"xml.app", "XML-Anwendung"},
        {"xml.app.error.details", "Details"},
        {"xml.app.exit.hint", "Mit Beenden schließen Sie die Anwendung"},
        {"command.exit", "Beenden"},
        {"command.cancel", "Abbrechen"},
        {"command.select", "Auswählen"},
        {"selectionfield.options", "Optionen"},
        {"list.options", "Optionen"},
        {"alert.dismiss", "OK"},
        {"alert.numberformat.title", "Ungültige Zahl"},
        {"alert.numberformat.msg", "Bitte nur Ziffern eingeben."},
    };
    return table;
}

bool isGerman(const std::string& language) {
    return language.size() >= 2 && std::tolower(static_cast<unsigned char>(language[0])) == 'd' &&
           std::tolower(static_cast<unsigned char>(language[1])) == 'e';
}

std::string lookUp(const std::string& language, const std::string& key) {
    const Table& table = isGerman(language) ? germanTable() : englishTable();
    auto found = table.find(key);
    return found == table.end() ? key : found->second;
}

} // namespace

Translator::Translator(const std::string& name) : mName(name), mLanguage("en") {}

void Translator::setLanguage(const std::string& language) {
    std::lock_guard<std::mutex> lock(mLanguageLock);
    mLanguage = language;
}

std::string Translator::getLanguage() const {
    std::lock_guard<std::mutex> lock(mLanguageLock);
    return mLanguage;
}

std::string Translator::translate(const std::string& key) const {
    return lookUp(getLanguage(), key);
}

std::string TranslationInfo::getText() const {
    return mTranslator != nullptr ? mTranslator->translate(mKey) : lookUp("en", mKey);
}
