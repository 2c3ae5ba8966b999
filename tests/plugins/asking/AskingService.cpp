// A service that behaves: it asks the channel "/test/asked" again and again, and logs what comes
// back. It brings others into trouble, so that they can be seen there.

#include <memory>

#include "SvcRTEContext.h"
#include "framework/CommsChannel.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Logging.h"
#include "framework/Service.h"

class AskingService : public Service {
 public:
  void init(SvcRTEContext* context) override {
    channel_ = std::make_unique<CommsChannel>("/test/asking/questions", nullptr);
    context->startTimer(context->createTimer(this, 20));
  }

  void timerExpired(int /*timer*/) override {
    CommsChannelDataContainerMessage message;
    message.setChannel("/test/asked");
    message.setRequestId(++requestId_);
    channel_->send(message);
    const bool answered = channel_->receiveReply(message, requestId_);
    logAppUni("Test", "AskingService", 4, __LINE__, "question %ld: %s", requestId_,
              answered ? "answered" : message.getError().c_str());
  }

 private:
  std::unique_ptr<CommsChannel> channel_;
  long requestId_ = 0;
};

extern "C" ZERVA_EXPORT Service* createAsking() { return new AskingService; }
