// A service whose `init` takes long, though not for ever.

#include <chrono>
#include <thread>

#include "framework/Service.h"

class SlowInitService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {
    // The very thing that is shown: it takes its time, nobody waits for it to be over by then.
    std::this_thread::sleep_for(std::chrono::milliseconds(1105));
  }
};

extern "C" ZERVA_EXPORT Service* createSlowInit() { return new SlowInitService; }
