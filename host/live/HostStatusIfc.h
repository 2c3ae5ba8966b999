#pragma once

#include <string>

namespace zerva {

/** What a host that tells how it is serves, for whoever looks at a run from outside. */
class HostStatusIfc {
 public:
  /** @returns a text that `readProcessStatus` reads. */
  virtual std::string status() = 0;

  /** @returns the calls that the process made so far; a text that `readCallsSoFar` reads. */
  virtual std::string calls() = 0;

  /** @returns the channel on which the host in a process serves it. */
  static std::string channelOf(int process);

  static constexpr const char* name = "HostStatusIfc";

 protected:
  ~HostStatusIfc() = default;
};

}  // namespace zerva
