// Ticks on a thread of its own. A legacy service has no channel and is never told to stop: its
// body ends by itself when its own timer no longer runs, which is so once the process shuts down.

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "SvcRTEContext.h"
#include "framework/Logging.h"
#include "framework/Service.h"

class ClockService : public Service {
 public:
  void init(SvcRTEContext* context) override {
    context_ = context;
    timer_ = context->createTimer(this, 1000);
    context->startTimer(timer_);
  }

  /** On the timer's thread, since there is no channel. */
  void timerExpired(int /*timer*/) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++due_;
    changed_.notify_one();
  }

  /** On this service's own thread, from after `init` on. */
  void run() override {
    int ticks = 0;
    while (context_->timerRunning(timer_)) {
      if (takeDue()) logAppUni("Example", "ClockService", 4, __LINE__, "clock: tick %d", ++ticks);
    }
    logAppUni("Example", "ClockService", 4, __LINE__, "clock: stands still after %d ticks", ticks);
  }

 private:
  /** Waits a little for a tick: nobody tells when the timer has stopped for good. */
  bool takeDue() {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!changed_.wait_for(lock, std::chrono::milliseconds(50), [this] { return due_ > 0; })) {
      return false;
    }
    --due_;
    return true;
  }

  SvcRTEContext* context_ = nullptr;
  int timer_ = 0;
  std::mutex mutex_;
  std::condition_variable changed_;
  int due_ = 0;  // guarded by mutex_
};

extern "C" ZERVA_EXPORT Service* createClock() { return new ClockService; }
