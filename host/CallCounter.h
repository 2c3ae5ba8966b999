#pragma once

#include <atomic>

#include "framework/InvokeInterceptor.h"

namespace zerva {

/** Counts what the services of a process were asked to do. */
class CallCounter final : public InvokeInterceptor {
 public:
  void invoked(const Invocation& invocation) override;

  /** @returns how many invocations there were. */
  unsigned long calls() const;

  /** @returns how many of them failed. */
  unsigned long failures() const;

 private:
  std::atomic<unsigned long> calls_{0};
  std::atomic<unsigned long> failures_{0};
};

}  // namespace zerva
