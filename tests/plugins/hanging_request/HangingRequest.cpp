// A service that never answers.

#include <unistd.h>

#include "framework/Logging.h"
#include "framework/Service.h"

class HangingRequestService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}

  void messageReceived(const CommsChannelDataContainerMessage& /*message*/,
                       CommsChannelDataContainerMessage& /*reply*/) override {
    logAppUni("Test", "HangingRequest", 4, __LINE__, "the request hangs");
    for (;;) pause();
  }
};

extern "C" ZERVA_EXPORT Service* createHangingRequest() { return new HangingRequestService; }
