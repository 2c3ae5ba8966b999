#pragma once

#include <memory>

#include "framework/Export.h"

class Executable;
class FrameworkContext;

/**
 * The timers of a process, driven by one thread and the monotonic clock. An expiry is delivered
 * through the owner's channel, under the same threading rule as the owner's requests; an owner
 * without a channel is called on the timer's thread. An expiry that was not yet delivered when the
 * next is due is not doubled.
 *
 * Any thread may call any operation, `timerExpired` included. No lock is held while the context or
 * an owner is called.
 */
class ZERVA_EXPORT FwkTimer {
 public:
  /**
   * @param context asked for the channel of a timer's owner, once, when the timer is started first;
   *     not owned, outlives the timer.
   */
  explicit FwkTimer(FrameworkContext* context);

  /** Shuts down first when that was not done, then ends the thread. */
  virtual ~FwkTimer();
  FwkTimer(const FwkTimer&) = delete;
  FwkTimer& operator=(const FwkTimer&) = delete;

  /**
   * Makes a timer that stands still.
   *
   * @param owner whose `timerExpired` is called; not owned, lives until the timer is deleted or the
   *     service is shut down.
   * @param period milliseconds between expiries, at least 1.
   * @returns the timer's id, greater than 0; or 0 when the owner is null, the period is less than
   *     1, or after `shutdown`.
   */
  int createTimer(Executable* owner, int period);

  /**
   * Starts a timer: it expires a period from now and then every period.
   *
   * @returns false when there is no such timer, when it runs already, or after `shutdown`.
   */
  bool startTimer(int id);

  /**
   * Stops a timer. An expiry that was not yet handed to the owner is dropped.
   *
   * @returns false when there is no such timer or it does not run.
   */
  bool stopTimer(int id);

  /**
   * Makes a timer run and expire a full period from now, whether it ran or not.
   *
   * @returns false when there is no such timer, or after `shutdown`.
   */
  bool resetTimer(int id);

  /**
   * Stops and forgets a timer. Its id is not used again. A call of the owner that is under way on
   * another thread may still finish.
   *
   * @returns false when there is no such timer.
   */
  bool deleteTimer(int id);

  /** @returns whether the timer runs; always false after `shutdown`. */
  bool timerRunning(int id);

  /**
   * Ends all timers for good: waits for deliveries under way, except one on the calling thread;
   * afterwards none is delivered and no timer runs. May be repeated.
   */
  void shutdown();

 private:
  struct State;
  std::unique_ptr<State> state_;
};
