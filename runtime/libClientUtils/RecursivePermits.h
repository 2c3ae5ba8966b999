#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace zerva {

/**
 * The permits of a recursive semaphore. Any thread; a thread that was given a permit may delete it
 * at once.
 */
class RecursivePermits {
 public:
  /** @param free from 0 to `maximum`. */
  RecursivePermits(int free, int maximum) : maximum_(maximum), free_(free) {}

  /** See `Semaphore::take`. */
  bool take(int timeout);

  /** See `Semaphore::give`. */
  bool give();

 private:
  const int maximum_;
  std::mutex mutex_;
  std::condition_variable given_;
  // Guarded by mutex_.
  int free_;
  int waiting_ = 0;
  int taken_ = 0;
  int takenAgain_ = 0;
  std::thread::id lastTaker_;
};

}  // namespace zerva
