#pragma once

#include <cstddef>

#include "framework/Export.h"

namespace zerva {

/** How the platform makes threads; one setting for the process. Any thread may call it. */
class ThreadSettings {
 public:
  /**
   * Sets the stack of threads that are spawned from now on without a size of their own; at first
   * 256 KiB, so that a 32-bit process has room for thousands.
   *
   * @param bytes 0 for what it was at first.
   */
  ZERVA_EXPORT static void setDefaultStackSize(std::size_t bytes);

  /** @returns what was set. */
  ZERVA_EXPORT static std::size_t defaultStackSize();

  /**
   * @param requested bytes, or 0 for the default.
   * @returns the stack that a thread really gets: at least what the system asks for, whole pages,
   *     more when the program is instrumented.
   */
  ZERVA_EXPORT static std::size_t stackSize(std::size_t requested);
};

}  // namespace zerva
