#pragma once

#include "framework/Logging.h"

// Macros, so that the line is that of the call and nothing is formatted for a level that is off.

/** Logs an error, whatever the level of the module. */
#define REPOSITORY_LOG_ERROR(...) \
  logAppUni("Service Config", "src/ServiceRepository", 2, __LINE__, __VA_ARGS__)

/** Logs progress, when the module's level asks for it. */
#define REPOSITORY_LOG_PROGRESS(...)                                                  \
  do {                                                                                \
    if (loggingOnAppUni("Service Config", 5)) {                                       \
      logAppUni("Service Config", "src/ServiceRepository", 5, __LINE__, __VA_ARGS__); \
    }                                                                                 \
  } while (false)
