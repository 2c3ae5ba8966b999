#pragma once

#include <cstdint>

#include "framework/Export.h"

namespace zerva {

/**
 * How up to date it is what somebody found in a context, and keeps: an invoker or an adapter, of
 * the whole process. Any thread.
 *
 * An object has ended when its base is destroyed. Who is about to use it at that moment is not told
 * in time, as little as one who found it just before; whoever deletes it sees to that.
 */
class ZERVA_EXPORT Lookups {
 public:
  /** @returns another number than before when something that may have been found has ended. */
  static std::uint32_t age();

  /** Says that something has ended which may have been found, or is not what is found any more. */
  static void somethingEnded();
};

}  // namespace zerva
