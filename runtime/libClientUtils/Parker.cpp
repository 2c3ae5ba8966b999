#include "runtime/libClientUtils/Parker.h"

namespace zerva {

const std::shared_ptr<Parker>& Parker::ofThisThread() {
  thread_local const std::shared_ptr<Parker> parker = std::make_shared<Parker>();
  return parker;
}

bool Parker::park(Clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  const bool unparked = changed_.wait_until(lock, deadline, [this] { return unparked_; });
  unparked_ = false;
  return unparked;
}

void Parker::park() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return unparked_; });
  unparked_ = false;
}

void Parker::unpark() {
  const std::lock_guard lock(mutex_);
  unparked_ = true;
  changed_.notify_one();
}

}  // namespace zerva
