#include "host/EndRequest.h"

namespace zerva {

void EndRequest::make() {
  const std::lock_guard lock(mutex_);
  made_ = true;
  changed_.notify_all();
}

bool EndRequest::made() const {
  const std::lock_guard lock(mutex_);
  return made_;
}

void EndRequest::wait(std::optional<std::chrono::milliseconds> longest) {
  std::unique_lock lock(mutex_);
  if (longest) {
    changed_.wait_for(lock, *longest, [this] { return made_; });
  } else {
    changed_.wait(lock, [this] { return made_; });
  }
}

}  // namespace zerva
