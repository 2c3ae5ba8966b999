#pragma once

#include <memory>
#include <string>

#include "framework/Export.h"

class Threadable;

/** How urgent a thread is to the scheduler. */
enum ThreadPriority {
  /** Runs when nothing else wants to. */
  THREAD_PRIORITY_LOW = 0,
  /** As the process was started. */
  THREAD_PRIORITY_NORMAL = 1,
  /** Before all others; the plain priority is kept, and logged, where the process may not do so. */
  THREAD_PRIORITY_HIGH = 2
};

/**
 * Starts threads. It holds nothing of the threads that it started: they go on when it is gone.
 */
class ZERVA_EXPORT Threader {
 public:
  /** Starts nothing yet. */
  Threader();
  ~Threader();
  Threader(const Threader&) = delete;
  Threader& operator=(const Threader&) = delete;

  /**
   * Starts a thread that runs a body. The thread starts with the signals blocked that the caller
   * has blocked.
   *
   * @param threadId gets the id of the thread, or 0 when it could not be made.
   * @param body what the thread runs; not owned; lives until `waitForThreadCompletion` on it
   *     returned. It runs once at a time.
   * @param name the thread's name for debuggers, cut to what the system holds; may be empty.
   * @param priority the thread's priority.
   * @param stackSize bytes of stack, or 0 for the platform's default.
   * @returns false when the thread could not be made or the body runs already; that is logged.
   */
  bool spawn(unsigned long* threadId, Threadable* body, std::string name, ThreadPriority priority,
             int stackSize);
};
