#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

namespace zerva {

/** The wish that the process end. Any thread may call any operation. */
class EndRequest {
 public:
  /** Makes it; from then on it stays made. */
  void make();

  /** Whether anybody has made it. */
  bool made() const;

  /** Waits until it is made, or until a time has passed; without limit when none is given. */
  void wait(std::optional<std::chrono::milliseconds> longest);

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool made_ = false;  // guarded by mutex_
};

}  // namespace zerva
