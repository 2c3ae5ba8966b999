#pragma once

#include <memory>
#include <string>

#include "bench/harness/OtherProcess.h"
#include "bench/ours/EchoWorld.h"
#include "runtime/libClientUtils/bus/Bus.h"

namespace zerva::bench {

/** Two processes on one bus: the registry and a service in the other, the caller in this one. */
class TwoHosts {
 public:
  /** @param mode of the service, "MT" or "ST". */
  explicit TwoHosts(const std::string& mode);
  ~TwoHosts();
  TwoHosts(const TwoHosts&) = delete;
  TwoHosts& operator=(const TwoHosts&) = delete;

  /** @returns the proxy of the service. */
  Echo& echo() { return *echo_; }

  /** Sends the service what nobody answers. @returns whether it was taken. */
  bool send(const std::string& data) { return world_->channel().sendTo(channelName(0), data); }

 private:
  const std::string directory_;
  OtherProcess other_;
  std::unique_ptr<Bus> bus_;
  std::unique_ptr<World> world_;
  Echo* echo_ = nullptr;
};

}  // namespace zerva::bench
