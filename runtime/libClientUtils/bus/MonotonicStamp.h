#pragma once

#include <time.h>

#include <cstdint>

namespace zerva {

/** @returns the time, in nanoseconds, that all processes of the machine agree on. */
inline std::uint64_t monotonicStamp() {
  constexpr std::uint64_t kNanoseconds = 1'000'000'000;
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * kNanoseconds +
         static_cast<std::uint64_t>(now.tv_nsec);
}

}  // namespace zerva
