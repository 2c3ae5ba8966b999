#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "host/live/LiveExit.h"

namespace zerva {

/** What `zerva call` was asked for. */
struct CallOptions {
  /** The directory of the bus; empty for that of the environment. */
  std::string bus;
  std::string interface;
  std::string method;
  /** As `readArgument` reads them. */
  std::vector<std::string> arguments;
  bool json = false;
  /** How long a request waits for its answer. */
  std::chrono::milliseconds timeout{10000};
};

/** Makes one call in the protocol "zerva_svc_xml", and prints what comes back. */
LiveExit call(const CallOptions& options);

}  // namespace zerva
