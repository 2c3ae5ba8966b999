#pragma once

#include <cstdint>

#include "framework/Export.h"

namespace zerva::bench {

/**
 * What services of all libraries, and the benchmark that drives them, have in common. One for a
 * process; any thread may call any operation.
 */
class ZERVA_EXPORT Arrivals {
 public:
  /** So many more messages are awaited. */
  static void expect(std::uint32_t messages);

  /** A message came. */
  static void one();

  /** Waits until all that were expected have come. */
  static void awaitAll();

  /** Waits, on the thread of a service, for `releaseAll`. */
  static void stayUntilReleased();

  /** Ends those waits. */
  static void releaseAll();
};

}  // namespace zerva::bench
