#pragma once

#include <pthread.h>

#include <condition_variable>
#include <memory>
#include <mutex>

#include "framework/Threadable.h"
#include "runtime/libClientUtils/Description.h"

/**
 * What a body, its thread and those who wait for it share. It outlives all of them, so that one who
 * waits may delete the body while others still wait.
 */
struct Threadable::State {
  enum class Phase {
    /** No thread, or one that was joined or detached. */
    kNone,
    /** There is a thread that nobody joins yet. */
    kThere,
    /** There is a thread and somebody joins it. */
    kJoining
  };

  std::mutex mutex;
  std::condition_variable changed;
  // Guarded by mutex.
  Phase phase = Phase::kNone;
  pthread_t thread{};
  /** What the body was when it got the thread; the thread itself may read it without the lock. */
  std::shared_ptr<const zerva::Description> body;
  /** Whether the thread has left the body; what is left of it is to be joined. */
  bool bodyLeft = false;
  /** Counts the joins that have ended. */
  unsigned long joins = 0;

  /** Whether the calling thread is the body's. The lock is held. */
  bool onOwnThread() const {
    return phase != Phase::kNone && pthread_equal(thread, pthread_self()) != 0;
  }

  /**
   * Waits until there is no thread any more: joins it, or waits for the one who does.
   *
   * @param lock holds the mutex; released while waiting.
   */
  void join(std::unique_lock<std::mutex>& lock);
};
