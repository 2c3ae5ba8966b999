#include "host/tracing/TracedChannel.h"

#include <cstdint>

#include "framework/CommsChannelDataContainerMessage.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"

namespace zerva {

TracedChannel::TracedChannel(CommsChannelIfc& channel) : channel_(channel) {}

const std::string& TracedChannel::getName() const { return channel_.getName(); }

bool TracedChannel::send(CommsChannelDataContainerMessage& message) {
  return channel_.send(message);
}

bool TracedChannel::sendTo(const std::string& channel, const std::string& data) {
  return channel_.sendTo(channel, data);
}

bool TracedChannel::receiveReply(CommsChannelDataContainerMessage& message, long requestId) {
  const std::int64_t begin = Trace::begin();
  if (begin == 0) return channel_.receiveReply(message, requestId);
  std::string question;
  Trace::guarded([&] { question = message.getData(); });
  const bool answered = channel_.receiveReply(message, requestId);
  Trace::guarded([&] {
    TraceEvent(TraceKind::Question)
        .since(begin)
        .with(TraceKey::Text, question)
        .with(TraceKey::Answer, answered ? message.getData() : std::string())
        .write();
  });
  return answered;
}

bool TracedChannel::isServed(const std::string& channel) { return channel_.isServed(channel); }

}  // namespace zerva
