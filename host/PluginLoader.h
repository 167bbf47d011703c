// Loads the phonelet plug-in library and finds its createPhonelet entry.
#pragma once

#include <string>

class Phonelet;

class PluginLoader {
public:
    PluginLoader() = default;
    // Unloads the library; every phonelet it created must have been deleted before.
    ~PluginLoader();
    PluginLoader(const PluginLoader&) = delete;
    PluginLoader& operator=(const PluginLoader&) = delete;

    // False with a one-line reason (the loader's own message) when the library cannot be loaded
    // or lacks the entry.
    bool load(const std::string& path, std::string& error);
    // A new phonelet from the library's entry; null before a successful load.
    Phonelet* createPhonelet() const;

private:
    using CreateFunction = Phonelet* (*)();
    void* mLibrary = nullptr;
    CreateFunction mCreate = nullptr;
};
