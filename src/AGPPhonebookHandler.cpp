// Phone-book lookups for the phonelet: names and pictures of phone numbers.
#include "AGPPhonebookHandler.h"

#define AGP_LOG_MODULE "AGPPhonelet"
#define AGP_LOG_SOURCE "./src/AGPPhonebookHandler.cpp"

#include "AGPLog.h"

bool AGPPhonebookHandler::startAGPPhonebookHandler(DirectoryServiceIfc* service) {
    if (service == nullptr) {
        AGP_LOG(2, "AGPPhonebookHandler startup failed: can't find Directory Service");
        return false;
    }
    mService = service;
    return true;
}
