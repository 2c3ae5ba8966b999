#pragma once

#include <string>

#include "framework/CommsChannelIfc.h"

namespace zerva {

/**
 * The channel through which a configurator asks the registry: hands every operation on to another
 * channel, and puts each question with its answer into the trace.
 */
class TracedChannel final : public CommsChannelIfc {
 public:
  /** @param channel does the work; not owned. */
  explicit TracedChannel(CommsChannelIfc& channel);

  const std::string& getName() const override;
  bool send(CommsChannelDataContainerMessage& message) override;
  bool sendTo(const std::string& channel, const std::string& data) override;
  bool receiveReply(CommsChannelDataContainerMessage& message, long requestId) override;
  bool isServed(const std::string& channel) override;

 private:
  CommsChannelIfc& channel_;
};

}  // namespace zerva
