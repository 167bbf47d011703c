// One number of the phone book with the contact it belongs to.
#pragma once

#include <string>

struct DirectoryRecord {
    enum NumberType { Private = 1, Business1 = 2, Business2 = 3, Mobile = 4 };

    std::string number;
    std::string firstName;
    std::string surname;
    // File name of the contact's picture, "" for none.
    std::string pictureFileName;
    int numberType = Private;
};
