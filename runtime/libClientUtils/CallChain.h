#pragma once

#include <cstdint>

#include "framework/Export.h"

namespace zerva {

/**
 * Ties together a request and all requests that are made to answer it. It travels with every
 * message, so that a thread that waits can tell the requests that it waits for itself from those of
 * others.
 */
struct CallChain {
  /** The same in the whole chain, unlike any other; 0 for none. */
  std::uint64_t id = 0;
  /** How many requests of the chain wait for this one. */
  unsigned depth = 0;
};

/** Most requests of one chain that may wait for one another; more is taken for a runaway. */
inline constexpr unsigned kMaximumChainDepth = 256;

/** Most requests of one chain that one thread serves inside each other: they share its stack. */
inline constexpr unsigned kMaximumNestingOnOneThread = 16;

/** @returns a chain that nothing belongs to yet. Any thread. */
ZERVA_EXPORT CallChain newCallChain();

}  // namespace zerva
