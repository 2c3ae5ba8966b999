#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace zerva {

/**
 * Lets a number of threads go on only when all of them have come, again and again.
 *
 * Built on a condition variable: what this compiler builds on waiting for an atomic can sleep for
 * ever, and a test must not hang for a reason of its own.
 */
class Barrier {
 public:
  /** @param threads How many must come before any goes on; at least 1. */
  explicit Barrier(std::size_t threads) : expected{threads} {}

  /** Counts the calling thread and blocks until all have come. Any thread. */
  void arriveAndWait();

 private:
  const std::size_t expected;
  std::mutex mutex;
  std::condition_variable changed;
  std::size_t arrived = 0;  // guarded by mutex
  std::size_t round = 0;    // guarded by mutex
};

/** Holds threads back until it is opened; from then on it stays open. */
class Gate {
 public:
  /** Lets all go on who wait, and all who come later. Any thread, any number of times. */
  void open();

  /** Blocks until the gate is open. Any thread. */
  void wait();

  /** Whether it was opened. Does not block. */
  bool isOpen();

  /**
   * How many threads are in wait() now, so that a test can know that they have really come.
   * Does not block.
   */
  std::size_t waiting();

 private:
  std::mutex mutex;
  std::condition_variable changed;
  bool opened = false;      // guarded by mutex
  std::size_t waiters = 0;  // guarded by mutex
};

}  // namespace zerva
