#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace zerva {

/**
 * Ends a program that hangs, and tells where it hangs.
 *
 * Every test program has one: it is set before each test and released after it, so a test needs
 * none of its own. When the time is over, standard error gets the name of the test and, for each
 * thread, its name, its state, what it waits for in the kernel and its call stack; then every
 * process that the test started through ChildProcess is killed and the program ends with exit
 * code 86.
 */
class Watchdog {
 public:
  static constexpr int exitCode = 86;

  /** Starts the thread that watches; nothing is watched yet. */
  Watchdog();
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;
  /** Ends that thread. */
  ~Watchdog();

  /**
   * Begins to watch. Replaces what was watched before. Any thread.
   *
   * @param what The name that the message gives.
   * @param limit How long it may take.
   */
  void set(const std::string& what, std::chrono::milliseconds limit);

  /** Ends the watch. Any thread. */
  void release();

 private:
  void watch();

  std::mutex mutex;
  std::condition_variable changed;
  std::string watched;                        // guarded by mutex
  std::chrono::steady_clock::time_point end;  // guarded by mutex
  bool armed = false;                         // guarded by mutex
  bool over = false;                          // guarded by mutex
  std::thread thread;                         // constant after construction
};

}  // namespace zerva
