// A service that behaves: its timers expire as fast as they can. It ends the process when it is
// called after its end.

#include <atomic>
#include <cstdlib>

#include "SvcRTEContext.h"
#include "framework/Service.h"

/** How many timers have expired, of all these services. */
extern "C" ZERVA_EXPORT std::atomic<int> expiriesOfTicking;
std::atomic<int> expiriesOfTicking{0};

class TickingService : public Service {
 public:
  ~TickingService() override { alive_ = false; }

  void init(SvcRTEContext* context) override {
    for (int i = 0; i < 5; ++i) context->startTimer(context->createTimer(this, 1));
  }

  void timerExpired(int /*timer*/) override {
    if (!alive_) std::abort();
    ++expiriesOfTicking;
  }

 private:
  std::atomic<bool> alive_{true};
};

extern "C" ZERVA_EXPORT Service* createTicking() { return new TickingService; }
