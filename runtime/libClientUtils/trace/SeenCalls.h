#pragma once

#include <cstdint>

#include "framework/Export.h"
#include "runtime/libClientUtils/trace/CallTally.h"
#include "runtime/libClientUtils/trace/Trace.h"

namespace zerva {

/**
 * The calls that the process has made so far, counted for whoever looks at it while it runs; off
 * until it is started, with a trace and without one. One for the process. Any thread may call any
 * operation; none throws but `visit`, when there is no memory for the answer.
 */
class ZERVA_EXPORT SeenCalls {
 public:
  /** Calls that were made by too many different callers, or of too much, to tell them apart. */
  struct Others {
    std::uint64_t count = 0;
    std::uint64_t failures = 0;
  };

  /** How many different calls are told apart for each eighth of the threads. */
  static constexpr std::size_t kMost = 512;

  /** How many all threads together can come to. */
  static constexpr std::size_t kMostOfAll = CallTally::kShares * kMost;

  /** @returns whether they are counted: one relaxed read. */
  static bool on() {
    return (Trace::wanted_.load(std::memory_order_relaxed) & Trace::kSeenCalls) != 0;
  }

  /** Counts from here on, from nothing. */
  static void start() noexcept;

  /** Counts no more; what was counted stays. */
  static void stop() noexcept;

  /** Counts a call. @param which any number; threads with different ones seldom meet. */
  static void add(unsigned which, const CallKey& key, std::int64_t duration, bool failed) noexcept;

  /** Hands over all that was counted since the start; see `CallTally`. */
  static void visit(const CallTally::Visit& visit);

  /** @returns what could not be told apart. */
  static Others others() noexcept;
};

}  // namespace zerva
