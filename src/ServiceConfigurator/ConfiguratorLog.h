#pragma once

#include "framework/Logging.h"

// Macros, so that the line is that of the call and nothing is formatted for a level that is off.

/** Logs an error, whatever the level of the module. */
#define CONFIGURATOR_LOG_ERROR(...) \
  logAppUni("Service Config", "src/ServiceConfigurator", 2, __LINE__, __VA_ARGS__)

/** Logs at a level, when the module's level asks for it. */
#define CONFIGURATOR_LOG_AT(level, ...)                                                     \
  do {                                                                                      \
    if (loggingOnAppUni("Service Config", level)) {                                         \
      logAppUni("Service Config", "src/ServiceConfigurator", level, __LINE__, __VA_ARGS__); \
    }                                                                                       \
  } while (false)

/** Logs progress, when the module's level asks for it. */
#define CONFIGURATOR_LOG_PROGRESS(...) CONFIGURATOR_LOG_AT(5, __VA_ARGS__)
