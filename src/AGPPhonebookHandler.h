// Phone-book lookups for the phonelet: names and pictures of phone numbers.
#pragma once

class DirectoryServiceIfc;

class AGPPhonebookHandler {
public:
    AGPPhonebookHandler() = default;
    virtual ~AGPPhonebookHandler() = default;
    AGPPhonebookHandler(const AGPPhonebookHandler&) = delete;
    AGPPhonebookHandler& operator=(const AGPPhonebookHandler&) = delete;

    bool startAGPPhonebookHandler(DirectoryServiceIfc* service);
    DirectoryServiceIfc* getService() const { return mService; }

private:
    DirectoryServiceIfc* mService = nullptr;
};
