// A service that does not let itself be stopped.

#include <unistd.h>

#include "framework/Logging.h"
#include "framework/Service.h"

class HangingStopService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}

  void stop() override {
    logAppUni("Test", "HangingStop", 4, __LINE__, "stop hangs");
    for (;;) pause();
  }
};

extern "C" ZERVA_EXPORT Service* createHangingStop() { return new HangingStopService; }
