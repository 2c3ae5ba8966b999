#include "runtime/libClientUtils/RecursivePermits.h"

#include <chrono>

namespace zerva {

bool RecursivePermits::take(int timeout) {
  const auto self = std::this_thread::get_id();
  std::unique_lock lock(mutex_);
  if (taken_ > 0 && lastTaker_ == self) {
    ++takenAgain_;
    return true;
  }
  if (free_ <= 0 && timeout != 0) {
    ++waiting_;
    const auto isFree = [this] { return free_ > 0; };
    if (timeout < 0) {
      given_.wait(lock, isFree);
    } else {
      // A deadline of this clock does not move when somebody sets the time of day.
      given_.wait_until(lock, std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout),
                        isFree);
    }
    --waiting_;
  }
  if (free_ <= 0) return false;
  --free_;
  ++taken_;
  lastTaker_ = self;
  return true;
}

bool RecursivePermits::give() {
  const std::lock_guard lock(mutex_);
  if (takenAgain_ > 0) {
    --takenAgain_;
    return true;
  }
  if (free_ >= maximum_) return false;
  ++free_;
  if (taken_ > 0) --taken_;
  // Under the lock: once it is released, a thread that was woken may delete the semaphore.
  if (waiting_ > 0) given_.notify_one();
  return true;
}

}  // namespace zerva
