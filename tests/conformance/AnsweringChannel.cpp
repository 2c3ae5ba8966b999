#include "tests/conformance/AnsweringChannel.h"

#include "framework/CommsChannelDataContainerMessage.h"

namespace zerva::conformance {

bool AnsweringChannel::send(CommsChannelDataContainerMessage& message) {
  const long id = message.getRequestId();
  const std::lock_guard lock(mutex_);
  sent_.push_back(id);
  return true;
}

bool AnsweringChannel::sendTo(const std::string& /*channel*/, const std::string& /*data*/) {
  return true;
}

bool AnsweringChannel::receiveReply(CommsChannelDataContainerMessage& message, long requestId) {
  message.setData("reply to " + std::to_string(requestId));
  const std::lock_guard lock(mutex_);
  awaited_.push_back(requestId);
  return true;
}

bool AnsweringChannel::isServed(const std::string& /*channel*/) { return true; }

std::vector<long> AnsweringChannel::sent() const {
  const std::lock_guard lock(mutex_);
  return sent_;
}

std::vector<long> AnsweringChannel::awaited() const {
  const std::lock_guard lock(mutex_);
  return awaited_;
}

}  // namespace zerva::conformance
