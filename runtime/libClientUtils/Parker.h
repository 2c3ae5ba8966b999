#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

#include "framework/Export.h"

namespace zerva {

using Clock = std::chrono::steady_clock;

/**
 * The one place where a thread of the platform waits. Whatever may end a wait - a reply, a request
 * of the thread's own chain, closing, shutdown - unparks it; the thread then looks for itself what
 * has changed.
 */
class ZERVA_EXPORT Parker {
 public:
  /** @returns the calling thread's place; shared, since others may unpark it while it ends. */
  static const std::shared_ptr<Parker>& ofThisThread();

  /**
   * Waits until somebody unparks the thread, which may have happened before.
   *
   * @returns false when the deadline came first.
   */
  bool park(Clock::time_point deadline);

  /** As above, without deadline. */
  void park();

  /** Ends the present or the next `park`. Any thread. */
  void unpark();

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool unparked_ = false;  // guarded by mutex_
};

}  // namespace zerva
