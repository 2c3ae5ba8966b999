#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "framework/Export.h"

namespace zerva {

/** How far an executor has come with what was sent to it. */
struct ExecutorProgress {
  /** The same for as long as the executor lives; given to no other one in the process. */
  std::uint64_t id;
  /** How many messages it has begun to serve so far; a making of its service counts as one, too. */
  std::uint64_t begun;
  /** How many wait to be served. The one for whose sake the service is being made does not wait. */
  std::size_t queued;
  /** By type, interface and channel; empty where nothing waits. */
  std::string description;
  /** The name of its channel. */
  std::string channel = {};
  /** The interfaces that it was made for, separated by single blanks. */
  std::string interfaces = {};
  /** How many it serves at this moment; the making of a lazy service counts as one. */
  unsigned serving = 0;
  /** How many of those that it has begun failed. */
  std::uint64_t failed = 0;
  /** Whether a lazy service is being made at this moment. */
  bool making = false;
};

/**
 * @returns how far each executor of the process has come, also those that no repository knows. Asks
 *     no service and sends nothing. Any thread.
 */
ZERVA_EXPORT std::vector<ExecutorProgress> executorProgress();

}  // namespace zerva
