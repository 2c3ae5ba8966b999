#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "framework/Export.h"

namespace zerva {

/** How a drain ended. */
struct DrainResult {
  /** Whether every request and every creation had ended in time. */
  bool complete;
  /** The executors that still had one under way, by type, interface and channel. */
  std::vector<std::string> underWay;
};

/**
 * Shuts down every executor of the process, also those that no repository knows, and waits until no
 * request and no creation of a service runs any more. Called by the host after the configurator's
 * `shutdown` and before it is deleted: what is still under way may need the repository, which the
 * deletion holds. Not called on a thread that serves a request.
 *
 * @param deadline longest wait.
 * @param but the channel of an executor that is left alone: one that needs nothing of what is
 *     deleted, and ends on its own; empty for none.
 */
ZERVA_EXPORT DrainResult drainExecutors(std::chrono::milliseconds deadline,
                                        const std::string& but = {});

/**
 * @returns the executors that have a request or a creation under way now, as in `DrainResult`.
 * @param but the channel of an executor that does not count; empty for none.
 */
ZERVA_EXPORT std::vector<std::string> executorsUnderWay(const std::string& but = {});

/**
 * @returns how many services outlived their executor because no repository knew them; they are kept
 *     reachable until the process ends.
 */
ZERVA_EXPORT std::size_t unrecordedServices();

}  // namespace zerva
