#include "tests/support/WaitUntil.h"

#include <thread>

namespace zerva {

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds deadline) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= end) return condition();
    std::this_thread::sleep_for(std::chrono::milliseconds{1});
  }
  return true;
}

}  // namespace zerva
