#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/trace/RunModel.h"

namespace zerva {

/** The calls that a process has made since it was started. */
struct CallsSoFar {
  /** In the order of caller, channel, interface and method. */
  std::vector<CallRun> calls;
  /** How many more there were, of callers and methods that could not be told apart. */
  std::uint64_t others = 0;
  /** How many of those failed. */
  std::uint64_t failedOthers = 0;
};

/** @returns what the process that this is called in has counted. */
CallsSoFar callsOfThisProcess();

/** @returns the text that `readCallsSoFar` reads: one object of JSON, without a line end. */
std::string writeCallsSoFar(const CallsSoFar& calls);

/**
 * Reads what another process wrote. More different calls than a process tells apart are among the
 * others.
 *
 * @throws std::runtime_error when it is no such text.
 */
CallsSoFar readCallsSoFar(const std::string& text);

}  // namespace zerva
