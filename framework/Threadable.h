#pragma once

#include <memory>

#include "framework/Export.h"

/**
 * A body that a thread can run. `Threader::spawn` starts the thread; whoever deletes the body waits
 * for it first.
 *
 * The thread's handle lives in state shared with the thread, so that waiting is possible from any
 * thread, several times, and for a body that never ran.
 */
class ZERVA_EXPORT Threadable {
 public:
  /** A body that no thread runs yet. */
  Threadable();
  Threadable(const Threadable&) = delete;
  Threadable& operator=(const Threadable&) = delete;

  /**
   * The body. An exception that leaves it is logged and ends the thread, not the process.
   */
  virtual void run() = 0;

  /**
   * Waits, without time-out, until the body's thread has ended completely, destructors of its
   * thread-local objects included; afterwards no code of the body's library runs on it. Returns at
   * once when the body never ran, when its thread was waited for before, and on the body's own
   * thread (which is logged). Any thread may call it, several at once too.
   */
  void waitForThreadCompletion();

  /**
   * The body must not be running. The caller has waited; this does not.
   */
  virtual ~Threadable();

  /** The implementation's state; opaque to everybody else. */
  struct State;
  const std::shared_ptr<State>& threadState() const;

 private:
  std::shared_ptr<State> state_;
};
