#pragma once

#include "framework/Export.h"

namespace zerva {

/** @returns how many processors the calling thread may run on; at least 1. */
ZERVA_EXPORT unsigned usableProcessors();

/** @returns whether the calling thread may run on more than one processor. */
ZERVA_EXPORT bool mayUseSeveralProcessors();

/** Tells the processor that a loop waits for another one. */
inline void pauseProcessor() { __builtin_ia32_pause(); }

}  // namespace zerva
