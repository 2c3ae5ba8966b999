#pragma once

#include "framework/Export.h"

namespace zerva {

/**
 * Wakes a thread that waits for a descriptor. Given back it stays open for the next owner, so that
 * whoever wakes a moment too late wakes somebody for no reason, and never writes elsewhere.
 */
class ZERVA_EXPORT WakeLine {
 public:
  /** Without descriptor or memory for it the line is not there. */
  WakeLine();
  ~WakeLine();
  WakeLine(const WakeLine&) = delete;
  WakeLine& operator=(const WakeLine&) = delete;

  /** @returns what becomes readable when somebody wakes; negative when it is not there. */
  int descriptor() const { return descriptor_; }

  /** Wakes who waits for a line, now or when it next does. Any thread; does not block. */
  static void wake(int descriptor);

  /** Forgets that somebody has woken. */
  static void forget(int descriptor);

 private:
  const int descriptor_;
};

}  // namespace zerva
