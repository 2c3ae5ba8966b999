#pragma once

#include <cstddef>

#include "framework/Export.h"

/**
 * A counting semaphore. Waiting blocks without using the processor; taking and giving without
 * contention make no system call.
 *
 * The state lies in the object, since semaphores are embedded in objects whose construction cannot
 * fail.
 */
class ZERVA_EXPORT Semaphore {
 public:
  /**
   * @param initial permits that are free at first, from 0 to `maximum`.
   * @param maximum most permits that can be free.
   * @param recursive whether the thread that took it last may take it again without waiting; each
   *     take is then given back. Meant for a maximum of 1.
   */
  Semaphore(int initial, int maximum, bool recursive);

  /**
   * Takes a permit, waiting for one if need be.
   *
   * @param timeout longest wait in milliseconds; 0 does not wait; -1 waits without limit.
   * @returns false when the time ran out.
   */
  virtual bool take(int timeout);

  /**
   * Gives a permit back, from any thread, and wakes one that waits.
   *
   * @returns false when the maximum was free already; nothing is changed then.
   */
  virtual bool give();

  /** Nobody may be waiting. */
  virtual ~Semaphore();
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

 private:
  static constexpr std::size_t kStateSize = 128;
  struct State;
  State& state();
  alignas(std::max_align_t) unsigned char state_[kStateSize];
};
