// Beats by a timer. With each beat it sends a message to the forecast, on a channel of its own, and
// waits for the answer. That its interface is called a heartbeat makes the configurator have its
// thread monitored.

#include <memory>
#include <string>

#include "SvcRTEContext.h"
#include "framework/CommsChannel.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Logging.h"
#include "framework/Service.h"

class HeartbeatService : public Service {
 public:
  void init(SvcRTEContext* context) override {
    // Replies come back to it; nobody sends requests there, so it needs no executor.
    channel_ = std::make_unique<CommsChannel>("/example/heartbeat/questions", nullptr);
    context->startTimer(context->createTimer(this, 1000));
  }

  void timerExpired(int /*timer*/) override { ask("/example/forecast", "what comes?"); }

 private:
  void ask(const std::string& channel, const std::string& question) {
    CommsChannelDataContainerMessage message;
    message.setChannel(channel);
    message.setData(question);
    message.setRequestId(++requestId_);
    channel_->send(message);
    // A request that could not be sent is not waited for: this then tells why.
    if (channel_->receiveReply(message, requestId_)) {
      logAppUni("Example", "HeartbeatService", 4, __LINE__, "heartbeat: %s answers '%s'",
                channel.c_str(), message.getData().c_str());
    } else {
      logAppUni("Example", "HeartbeatService", 3, __LINE__, "heartbeat: %s does not answer: %s",
                channel.c_str(), message.getError().c_str());
    }
  }

  std::unique_ptr<CommsChannel> channel_;
  long requestId_ = 0;
};

extern "C" ZERVA_EXPORT Service* createHeartbeat() { return new HeartbeatService; }
