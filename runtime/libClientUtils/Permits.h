#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

#include "runtime/libClientUtils/Futex.h"

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
  bool take(int timeout) { return takeFree(0) || (timeout != 0 && waitFor(timeout)); }

  /** See `Semaphore::give`. */
  bool give() {
    std::uint32_t word = word_.load(std::memory_order_relaxed);
    do {
      if ((word & ~kSleepers) >= maximum_) return false;
    } while (!word_.compare_exchange_weak(word, (word & ~kSleepers) + 1, std::memory_order_acq_rel,
                                          std::memory_order_relaxed));
    // From here on the object may be gone: its address is all that is used, and a thread that is
    // woken by mistake sleeps again.
    if ((word & kSleepers) != 0) wakeOne(word_);
    return true;
  }

 private:
  using Clock = std::chrono::steady_clock;

  /**
   * @param mark what is set in the word then: `kSleepers` by one who has slept.
   * @returns false when none is free.
   */
  bool takeFree(std::uint32_t mark) {
    std::uint32_t word = word_.load(std::memory_order_relaxed);
    do {
      if ((word & ~kSleepers) == 0) return false;
    } while (!word_.compare_exchange_weak(word, (word - 1) | mark, std::memory_order_acq_rel,
                                          std::memory_order_relaxed));
    // Whoever gave the others may have found no mark, since this thread had been woken already.
    if (mark != 0 && (word & ~kSleepers) > 1) wakeOne(word_);
    return true;
  }

  bool waitFor(int timeout);
  bool await(const Clock::time_point* deadline);

  static constexpr std::uint32_t kSleepers = std::uint32_t{1} << 31;

  const std::uint32_t maximum_;
  std::atomic<std::uint32_t> word_;
};

}  // namespace zerva
