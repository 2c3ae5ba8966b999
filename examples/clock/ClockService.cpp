// Ticks by a timer, and tells the number of ticks to whoever asks. Made to be run single-threaded:
// its timer runs under the same rule as its requests, so the number needs no lock.

#include <string>

#include "SvcRTEContext.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Logging.h"
#include "framework/Service.h"

class ClockService : public Service {
 public:
  void init(SvcRTEContext* context) override {
    const int timer = context->createTimer(this, periodInMilliseconds);
    context->startTimer(timer);
  }

  void timerExpired(int /*timer*/) override {
    ++ticks_;
    logAppUni("Example", "ClockService", 4, __LINE__, "clock: tick %d", ticks_);
  }

  void messageReceived(const CommsChannelDataContainerMessage& /*message*/,
                       CommsChannelDataContainerMessage& reply) override {
    reply.setData(std::to_string(ticks_) + " ticks");
  }

 private:
  static constexpr int periodInMilliseconds = 1000;
  int ticks_ = 0;
};

extern "C" ZERVA_EXPORT Service* createClock() { return new ClockService; }
