#pragma once

#include <chrono>

#include "framework/Export.h"

namespace zerva {

/** Sets how long a request waits for its answer before it fails; the default is 10 seconds. */
ZERVA_EXPORT void setReplyTimeout(std::chrono::milliseconds timeout);

/** @returns how long a request that is sent now will wait for its answer. */
ZERVA_EXPORT std::chrono::milliseconds replyTimeout();

}  // namespace zerva
