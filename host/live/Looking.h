#pragma once

#include <chrono>
#include <string>

#include "host/live/LiveExit.h"

namespace zerva {

/** What `zerva status` and `zerva watch` were asked for. */
struct LookOptions {
  /** The directory of the bus; empty for that of the environment. */
  std::string bus;
  /** Only services with this name, and all that is known of them; empty for all. */
  std::string name;
  bool json = false;
  /** How long a process has for its answer. */
  std::chrono::milliseconds timeout{2000};
  /** How long something may be queued, and nothing taken, until it counts as stuck. */
  std::chrono::milliseconds patience{500};
  /** Between two looks of `watch`. */
  std::chrono::milliseconds every{2000};
  /** After how many looks `watch` ends; 0 for never. */
  unsigned long count = 0;
};

/**
 * Prints how the processes of the bus are, once. When something is queued it looks a second time,
 * to tell what is stuck.
 */
LiveExit look(const LookOptions& options);

/**
 * Prints it again and again, until a signal that asks to end comes, or it was enough; what it sees
 * last gives the code. On a terminal each time in place of what was there before.
 */
LiveExit watch(const LookOptions& options);

}  // namespace zerva
