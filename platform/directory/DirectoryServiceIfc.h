// The platform service that looks numbers up in the phone book.
#pragma once

#include <string>

#include "directory/DirectoryRecord.h"
#include "services/PlatformService.h"

class DirectoryServiceIfc : public PlatformService {
public:
    static constexpr const char* SERVICE_NAME = "DirectoryServiceIfc";

    // Fills `record` and returns true when the phone book holds `number`; blanks and the
    // separators - / ( ) . are ignored on both sides. Leaves `record` alone otherwise.
    // Callable from any thread.
    virtual bool findByNumber(const std::string& number, DirectoryRecord& record) = 0;
};
