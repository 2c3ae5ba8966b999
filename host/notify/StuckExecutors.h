#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "runtime/libServiceExecutor/Progress.h"

namespace zerva {

/**
 * Tells which executors answer nobody: something is queued, and for some time nothing was taken.
 * Used by one thread.
 */
class StuckExecutors {
 public:
  using Clock = std::chrono::steady_clock;

  /** @param patience how long something may be queued while nothing moves. */
  explicit StuckExecutors(Clock::duration patience) : patience_(patience) {}

  /** @returns the executors that are stuck at a time, by what they are called. */
  std::vector<std::string> look(const std::vector<ExecutorProgress>& executors,
                                Clock::time_point now);

 private:
  /** Since when an executor has something queued and has not moved. */
  struct Standstill {
    std::uint64_t begun;
    Clock::time_point since;
  };

  const Clock::duration patience_;
  std::map<std::uint64_t, Standstill> standing_;  // by the executor's id
};

}  // namespace zerva
