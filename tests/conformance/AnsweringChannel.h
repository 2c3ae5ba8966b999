#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "framework/CommsChannelIfc.h"

namespace zerva::conformance {

/**
 * A channel that any number of threads may use at once. It keeps the ids of requests as they were
 * given, and answers each request with "reply to " and the id.
 */
class AnsweringChannel : public CommsChannelIfc {
 public:
  const std::string& getName() const override { return name_; }
  bool send(CommsChannelDataContainerMessage& message) override;
  bool sendTo(const std::string& channel, const std::string& data) override;
  bool receiveReply(CommsChannelDataContainerMessage& message, long requestId) override;
  bool isServed(const std::string& channel) override;

  /** @returns the ids in the messages that were sent, in order. */
  std::vector<long> sent() const;
  /** @returns the ids whose replies were waited for, in order. */
  std::vector<long> awaited() const;

 private:
  const std::string name_ = "answering";
  mutable std::mutex mutex_;
  std::vector<long> sent_;
  std::vector<long> awaited_;
};

}  // namespace zerva::conformance
