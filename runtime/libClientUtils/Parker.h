#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>

#include "framework/Export.h"
#include "runtime/libClientUtils/Input.h"

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
 *
 * A thread that waits for what comes from outside of the process reads it itself meanwhile, if
 * nobody else does. What it finds may be for others: then it lets somebody else read the next time.
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
   * Waits until somebody unparks the thread, which may have happened before. May return without
   * a reason. The thread's own.
   *
   * @param input where what is waited for comes from, when it is not this process; may be null.
   * @returns false when the deadline came first.
   */
  bool park(Clock::time_point deadline, Input* input = nullptr);

  /** As above, without deadline, for a thread that has nothing to do: see `isGivenWorkFrom`. */
  void park();

  /**
   * Says where the work came from that the thread does now: more may come that way when it is done.
   * The thread's own.
   *
   * @param input null when it came from this process.
   */
  void isGivenWorkFrom(const std::shared_ptr<Input>& input) { work_ = input; }

  /** Ends the present or the next `park`. Any thread; does not block. */
  void unpark();

 private:
  class Reading;

  bool readAt(Input* input, const Clock::time_point* deadline, bool& came);
  bool mayRead(Input* input);
  bool takeToken();
  bool look(Input* input);
  bool linger(Input* input);
  bool yield(Input* input);
  void noteUse(bool ofUse);
  bool spin(Clock::time_point end, Input* input);
  void askSystem();
  bool sleep(const Clock::time_point* deadline);
  bool sleepAt(Input& input, const Clock::time_point* deadline);
  bool pollAt(Input& input, const Clock::time_point* deadline);

  /** What `state_` may be; from the last one on it tells which line wakes the thread. */
  enum State : std::uint32_t { kAwake, kUnparked, kSleeping, kSleepingAtLine };
  std::atomic<std::uint32_t> state_{kAwake};

  // Of the thread that parks: how often looking was in vain since it last was not, and how many
  // times it is left out yet. Most threads that are made have nothing to do at first.
  unsigned inVain_ = 0;
  unsigned leftOut_ = 1;
  unsigned untilTimed_ = 0;  // how many times the clock is not looked at yet
  // What the system says: whether there is another processor, and whether the thread is given less
  // of one than others of the process; and how many times that is believed yet.
  bool several_ = false;
  bool comesAfterOthers_ = false;
  unsigned untilAsked_ = 0;
  // Where its work comes from, and whether it leaves the next reading to others.
  std::weak_ptr<Input> work_;
  bool leavesReading_ = false;
};

}  // namespace zerva
