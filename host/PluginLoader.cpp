// Loads the phonelet plug-in library and finds its createPhonelet entry.
#include "PluginLoader.h"

#include <dlfcn.h>

PluginLoader::~PluginLoader() {
    if (mLibrary != nullptr) {
        dlclose(mLibrary);
    }
}

bool PluginLoader::load(const std::string& path, std::string& error) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        const char* reason = dlerror();
        error = "cannot load the phonelet plug-in " + path + ": " +
                (reason != nullptr ? reason : "unknown reason");
        return false;
    }
    dlerror();
    void* entry = dlsym(library, "createPhonelet");
    if (entry == nullptr) {
        error = "the library " + path + " has no createPhonelet entry: it is not a phonelet plug-in";
        dlclose(library);
        return false;
    }
    mLibrary = library;
    mCreate = reinterpret_cast<CreateFunction>(entry);
    return true;
}

Phonelet* PluginLoader::createPhonelet() const {
    return mCreate != nullptr ? mCreate() : nullptr;
}
