#include "tests/support/Barrier.h"

namespace zerva {

void Barrier::arriveAndWait() {
  std::unique_lock lock{mutex};
  const std::size_t mine = round;
  if (++arrived == expected) {
    arrived = 0;
    ++round;
    changed.notify_all();
    return;
  }
  changed.wait(lock, [&] { return round != mine; });
}

void Gate::open() {
  const std::lock_guard lock{mutex};
  opened = true;
  changed.notify_all();
}

void Gate::wait() {
  std::unique_lock lock{mutex};
  ++waiters;
  changed.wait(lock, [&] { return opened; });
  --waiters;
}

bool Gate::isOpen() {
  const std::lock_guard lock{mutex};
  return opened;
}

std::size_t Gate::waiting() {
  const std::lock_guard lock{mutex};
  return waiters;
}

}  // namespace zerva
