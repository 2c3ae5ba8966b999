#include "host/CallCounter.h"

namespace zerva {

void CallCounter::invoked(const Invocation& invocation) {
  calls_.fetch_add(1, std::memory_order_relaxed);
  if (!invocation.error.empty()) failures_.fetch_add(1, std::memory_order_relaxed);
}

unsigned long CallCounter::calls() const { return calls_.load(std::memory_order_relaxed); }

unsigned long CallCounter::failures() const { return failures_.load(std::memory_order_relaxed); }

}  // namespace zerva
