#pragma once

#include "framework/Logging.h"

/** One line in the log of the executors, with the line of the caller. */
#define EXECUTOR_LOG(level, ...) \
  logAppUni("Service Executor", "runtime/libServiceExecutor", (level), __LINE__, __VA_ARGS__)
