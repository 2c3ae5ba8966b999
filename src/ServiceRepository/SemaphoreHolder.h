#pragma once

#include "framework/Semaphore.h"

namespace zerva {

/** Holds a permit of a semaphore as long as it lives. Waits for one without limit. */
class SemaphoreHolder {
 public:
  explicit SemaphoreHolder(Semaphore& semaphore) : semaphore_(semaphore) { semaphore_.take(-1); }
  ~SemaphoreHolder() { semaphore_.give(); }
  SemaphoreHolder(const SemaphoreHolder&) = delete;
  SemaphoreHolder& operator=(const SemaphoreHolder&) = delete;

 private:
  Semaphore& semaphore_;
};

}  // namespace zerva
