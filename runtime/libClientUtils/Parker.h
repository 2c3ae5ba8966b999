#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>

#include "framework/Export.h"

namespace zerva {

using Clock = std::chrono::steady_clock;

/**
 * The one place where a thread of the platform waits. Whatever may end a wait - a reply, a request
 * of the thread's own chain, closing, shutdown - unparks it; the thread then looks for itself what
 * has changed.
 *
 * A thread that was unparked soon the last times lingers before it sleeps, since to be put to sleep
 * and woken takes longer than many a call: it looks for some microseconds whether somebody unparks
 * it if there is another processor for whoever does, and lets others run once if there is not.
 */
class ZERVA_EXPORT Parker {
 public:
  /** @returns the calling thread's place; shared, since others may unpark it while it ends. */
  static const std::shared_ptr<Parker>& ofThisThread();

  /**
   * While it lives, the calling thread has the place that whoever made the thread got for it, so
   * that a thread that only waits needs no memory of its own.
   */
  class ZERVA_EXPORT Given {
   public:
    /** @param parker not copied. */
    explicit Given(const std::shared_ptr<Parker>& parker);
    ~Given();
    Given(const Given&) = delete;
    Given& operator=(const Given&) = delete;
  };

  /**
   * Waits until somebody unparks the thread, which may have happened before. The thread's own.
   *
   * @returns false when the deadline came first.
   */
  bool park(Clock::time_point deadline);

  /** As above, without deadline. */
  void park();

  /** Ends the present or the next `park`. Any thread; does not block. */
  void unpark();

 private:
  bool takeToken();
  bool linger();
  bool spin(Clock::time_point end);
  bool yield();
  bool sleep(const Clock::time_point* deadline);

  /** What `state_` may be. */
  enum State : std::uint32_t { kAwake, kUnparked, kSleeping };
  std::atomic<std::uint32_t> state_{kAwake};

  // Of the thread that parks: how often looking was in vain since it last was not, and how many
  // times it is left out yet. Most threads that are made have nothing to do at first.
  unsigned inVain_ = 0;
  unsigned leftOut_ = 1;
  // Whether there is another processor, and how many times that is believed yet.
  bool several_ = false;
  unsigned untilAsked_ = 0;
};

}  // namespace zerva
