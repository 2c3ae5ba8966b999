#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace zerva {

/**
 * The permits of a semaphore that is not recursive; one atomic operation each as long as nobody
 * waits. Any thread; a thread that was given a permit may delete it at once.
 *
 * One word holds how many are free and a mark that somebody may sleep. Giving takes the mark away
 * and wakes one, who stands for all others that sleep on: it sets the mark again when it takes a
 * permit or goes to sleep, and wakes the next one if it leaves permits. So whenever somebody
 * sleeps, there is the mark or one who is awake and stands for it.
 */
class Permits {
 public:
  /** @param free from 0 to `maximum`. */
  Permits(int free, int maximum);

  /** See `Semaphore::take`. */
  bool take(int timeout);

  /** See `Semaphore::give`. */
  bool give();

 private:
  using Clock = std::chrono::steady_clock;

  bool takeFree(std::uint32_t mark);
  bool await(const Clock::time_point* deadline);

  static constexpr std::uint32_t kSleepers = std::uint32_t{1} << 31;

  const std::uint32_t maximum_;
  std::atomic<std::uint32_t> word_;
};

}  // namespace zerva
