// A legacy service whose thread does not look whether it is over.

#include <unistd.h>

#include "framework/Service.h"

class HangingThreadService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}

  void run() override {
    for (;;) pause();
  }
};

extern "C" ZERVA_EXPORT Service* createHangingThread() { return new HangingThreadService; }
