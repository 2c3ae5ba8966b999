#pragma once

#include <asio/io_context.hpp>
#include <atomic>
#include <memory>
#include <string>

#include "runtime/libClientUtils/bus/BusId.h"
#include "runtime/libClientUtils/bus/SocketWatch.h"

namespace zerva {

/** What all parts of a process's bus have in common. */
struct BusShared {
  const std::string ownId = newBusId();
  const std::shared_ptr<asio::io_context> context = std::make_shared<asio::io_context>(1);
  const std::shared_ptr<SocketWatch> sockets = std::make_shared<SocketWatch>(context);
  /** Requests of others are not taken any more. */
  std::atomic<bool> closedToOutside{false};
  /** Requests to this channel still are. Constant once they are not; empty for none. */
  std::string stillOpen;
};

}  // namespace zerva
