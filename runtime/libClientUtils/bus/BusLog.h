#pragma once

#include "framework/Logging.h"

/** One line in the log of the bus, with the line of the caller. Never called with a lock held. */
#define BUS_LOG(level, ...) \
  logAppUni("Bus", "runtime/libClientUtils/bus", (level), __LINE__, __VA_ARGS__)
