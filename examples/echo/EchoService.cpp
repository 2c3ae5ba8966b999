// Answers each message with the same bytes. Made to be run multi-threaded: it keeps nothing that
// two requests could both touch.

#include "SvcRTEContext.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Service.h"

class EchoService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}

  void messageReceived(const CommsChannelDataContainerMessage& message,
                       CommsChannelDataContainerMessage& reply) override {
    reply.setData(message.getData());
  }
};

// What a directive names. The configurator owns what it gets, and deletes it at the end.
extern "C" ZERVA_EXPORT Service* createEcho() { return new EchoService; }
