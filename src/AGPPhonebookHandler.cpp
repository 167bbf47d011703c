// Phone-book lookups for the phonelet: names and pictures of phone numbers.
#include "AGPPhonebookHandler.h"

#define AGP_LOG_MODULE "AGPPhonelet"
#define AGP_LOG_SOURCE "./src/AGPPhonebookHandler.cpp"

#include "AGPDataObserver.h"
#include "AGPLog.h"
#include "AGPPhoneletManager.h"
#include "directory/DirectoryServiceIfc.h"

namespace {

const char* const kPictureFolder = "/data/images/";

// Icon file of each directory number type (1 private, 2 and 3 business, 4 mobile).
std::string iconFile(int numberType) {
    switch (numberType) {
    case DirectoryRecord::Private:
        return "05_icon_phonenumber_private.png";
    case DirectoryRecord::Business1:
        return "05_icon_phonenumber_business1.png";
    case DirectoryRecord::Business2:
        return "05_icon_phonenumber_business2.png";
    case DirectoryRecord::Mobile:
        return "05_icon_phonenumber_mobile.png";
    default:
        return "";
    }
}

} // namespace

bool AGPPhonebookHandler::startAGPPhonebookHandler(DirectoryServiceIfc* service) {
    if (service == nullptr) {
        AGP_LOG(2, "AGPPhonebookHandler startup failed: can't find Directory Service");
        return false;
    }
    mService = service;
    return true;
}

std::string AGPPhonebookHandler::iconDirectory(const std::string& deviceType, const std::string& skin) {
    const bool secondSkin = skin == "1";
    if (deviceType == "Veltria 80") {
        return secondSkin ? ":/images/Skin2_WG/05_Icons/" : ":/images/Skin1_CS/05_Icons/";
    }
    if (deviceType == "Veltria 60" || deviceType == "Brisa Set 55") {
        return secondSkin ? ":/images/Skin2_Brown_Orange_KR7/05_Icons/"
                          : ":/images/Skin1_Silver_Blue_KR7/05_Icons/";
    }
    return "";
}

bool AGPPhonebookHandler::findContactByNumber(const std::string& number, PhonebookContact& contact) {
    DirectoryRecord record;
    if (mService == nullptr || !mService->findByNumber(number, record)) {
        return false;
    }
    contact.number = number;
    contact.firstName = record.firstName;
    contact.surname = record.surname;
    if (!record.pictureFileName.empty()) {
        contact.picturePath = kPictureFolder + record.pictureFileName;
    }
    AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
    const std::string folder = configuration != nullptr ? iconDirectory(configuration->getRelatedDeviceType(),
                                                                        configuration->getDisplaySkin())
                                                        : std::string();
    if (folder.empty()) {
        contact.contactTypeIconPath.clear();
        return false;
    }
    contact.contactTypeIconPath = folder + iconFile(record.numberType);
    AGP_LOG(6, "Contact %s found: FirstName: [%s], SurName: [%s], Picture: [%s], ContactTypePath: [%s]\n",
            contact.number.c_str(), contact.firstName.c_str(), contact.surname.c_str(),
            contact.picturePath.c_str(), contact.contactTypeIconPath.c_str());
    return true;
}
