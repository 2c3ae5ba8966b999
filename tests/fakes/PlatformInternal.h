#pragma once

#include <cstdint>
#include <functional>

namespace zerva::fakes {

/** Something that happens when the clock is put forward or when things are settled. */
class Turn {
 public:
  /** @param key identifies the turn for `cancel`. */
  static void whenSettled(const void* key, std::function<bool()> work);
  static void cancel(const void* key);
  static void runSettled();
  static void clear();
};

/** Timers, as far as the clock sees them: delivers all expiries up to a time, in order. */
class Expiries {
 public:
  static void deliverUntil(std::int64_t nanoseconds);
};

}  // namespace zerva::fakes
