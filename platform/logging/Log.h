// Platform logging: printf-style lines per module and level, to standard error and to sinks.
#pragma once

#include <string>

// Levels in use: 2 error, 5 normal trace, 6 detailed trace. A line is written when its level is
// at or below the level configured for its module. The configuration comes from the environment
// variable AGP_LOG: a single level ("5") or a list of module:level pairs where "*" stands for
// every other module ("AGPXMLParser:6,*:2"). Without it, levels 2 and below are written.
void logAppUni(const char* module, const char* sourcePath, int level, int line, const char* format, ...)
    __attribute__((format(printf, 5, 6)));

// True when a line of this module and level would be written anywhere (standard error or a sink).
bool loggingOnAppUni(const char* module, int level);

// The highest level that AGP_LOG asks for, for any module (2 without AGP_LOG).
int highestConfiguredLogLevel();

// Log lines name their thread; a thread that names itself tells logging too, which saves reading
// the name back from the system for every line.
void setLogThreadName(const std::string& name);
