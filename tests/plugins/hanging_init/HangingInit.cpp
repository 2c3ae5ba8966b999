// A service whose `init` never returns.

#include <unistd.h>

#include "framework/Logging.h"
#include "framework/Service.h"

class HangingInitService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {
    logAppUni("Test", "HangingInit", 4, __LINE__, "init hangs");
    for (;;) pause();
  }
};

extern "C" ZERVA_EXPORT Service* createHangingInit() { return new HangingInitService; }
