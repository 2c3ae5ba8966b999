#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <utility>

namespace zerva::bench {

/** A queue between threads as one writes it down without thinking. */
class NaiveChannel {
 public:
  void put(std::string message) {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(message));
    notEmpty_.notify_one();
  }

  std::string take() {
    std::unique_lock lock(mutex_);
    notEmpty_.wait(lock, [this] { return !queue_.empty(); });
    std::string message = std::move(queue_.front());
    queue_.pop_front();
    return message;
  }

 private:
  std::mutex mutex_;
  std::condition_variable notEmpty_;
  std::deque<std::string> queue_;
};

}  // namespace zerva::bench
