// Phone-book lookups for the phonelet: names and pictures of phone numbers.
#pragma once

#include <string>

class DirectoryServiceIfc;

// Lifetime: created and deleted by the service registry; lookups may run on any queue thread
// (the directory service is callable from any thread and the handler keeps no state of its own).
class AGPPhonebookHandler {
public:
    // The result of a lookup.
    struct PhonebookContact {
        std::string number;
        std::string firstName;
        std::string surname;
        std::string picturePath;
        std::string contactTypeIconPath;
    };

    AGPPhonebookHandler() = default;
    virtual ~AGPPhonebookHandler() = default;
    AGPPhonebookHandler(const AGPPhonebookHandler&) = delete;
    AGPPhonebookHandler& operator=(const AGPPhonebookHandler&) = delete;

    bool startAGPPhonebookHandler(DirectoryServiceIfc* service);
    DirectoryServiceIfc* getService() const { return mService; }

    // True when the phone book knows `number` and the phone's model has number-type icons;
    // `contact` is left alone when the number is unknown.
    bool findContactByNumber(const std::string& number, PhonebookContact& contact);

    // The folder of the number-type icons for a device type and display skin; "" for a device
    // type without icons.
    static std::string iconDirectory(const std::string& deviceType, const std::string& skin);

private:
    DirectoryServiceIfc* mService = nullptr;
};
