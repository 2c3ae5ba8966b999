// Greets whoever sends a name. Made to be run lazily: it does not exist before its first message.

#include <string>

#include "SvcRTEContext.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Logging.h"
#include "framework/Service.h"

class GreeterService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {
    logAppUni("Example", "GreeterService", 4, __LINE__, "greeter: somebody needs me, here I am");
  }

  void messageReceived(const CommsChannelDataContainerMessage& message,
                       CommsChannelDataContainerMessage& reply) override {
    ++greeted_;
    reply.setData("hello " + message.getData() + ", you are number " + std::to_string(greeted_));
  }

 private:
  int greeted_ = 0;
};

extern "C" ZERVA_EXPORT Service* createGreeter() { return new GreeterService; }
