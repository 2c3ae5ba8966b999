// A service that answers every message with an exception.

#include <stdexcept>

#include "framework/Service.h"

class ThrowingRequestService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}

  void messageReceived(const CommsChannelDataContainerMessage& /*message*/,
                       CommsChannelDataContainerMessage& /*reply*/) override {
    throw std::runtime_error("the request does not suit me");
  }
};

extern "C" ZERVA_EXPORT Service* createThrowingRequest() { return new ThrowingRequestService; }
