// Logging shorthand for the phonelet: AGP_LOG(level, format, ...) with the file's module and path.
#pragma once

#include "logging/Log.h"

// Each source file defines AGP_LOG_MODULE (the class name of a service, "AGPObject" for elements)
// and AGP_LOG_SOURCE ("./src/<Class>.cpp" or "./src/AGPObjects/<Class>.cpp") before including this.
#define AGP_LOG(level, ...)                                                                                  \
    do {                                                                                                     \
        if (loggingOnAppUni(AGP_LOG_MODULE, level)) {                                                        \
            logAppUni(AGP_LOG_MODULE, AGP_LOG_SOURCE, level, __LINE__, __VA_ARGS__);                         \
        }                                                                                                    \
    } while (0)
