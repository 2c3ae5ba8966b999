// A service that behaves: it sends one message to the channel "/test/asked" and waits for no
// answer.

#include <memory>

#include "framework/CommsChannel.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Service.h"

class KnockingService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {
    channel_ = std::make_unique<CommsChannel>("/test/knocking/messages", nullptr);
    CommsChannelDataContainerMessage message;
    message.setChannel("/test/asked");
    channel_->send(message);
  }

 private:
  std::unique_ptr<CommsChannel> channel_;
};

extern "C" ZERVA_EXPORT Service* createKnocking() { return new KnockingService; }
