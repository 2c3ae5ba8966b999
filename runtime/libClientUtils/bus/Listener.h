#pragma once

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>
#include <functional>
#include <list>
#include <memory>
#include <string>

#include "runtime/libClientUtils/bus/BusShared.h"
#include "runtime/libClientUtils/bus/Connection.h"
#include "runtime/libClientUtils/bus/FileDescriptor.h"
#include "runtime/libClientUtils/bus/UnixSocket.h"

namespace zerva {

/** Takes connections, and hears who they are of. On the bus thread, but for `postStart`. */
class Listener {
 public:
  /** A process of this user has connected, says the bus name that is its own, and reads on. */
  using Greeted =
      std::function<void(const std::shared_ptr<Connection>& connection, const std::string& id)>;

  Listener(std::shared_ptr<const BusShared> bus, FileDescriptor socket, Greeted greeted);
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  /** Begins. On any thread. */
  void postStart();

  /** Takes nobody any more, and ends with those who have not said who they are. */
  void close();

 private:
  using Strangers = std::list<std::shared_ptr<Connection>>;

  void await();
  void acceptAll();
  void acceptLater(const std::string& why);
  void accepted(FileDescriptor socket);
  void takeGreeting(Strangers::iterator stranger, int process, std::string_view body);
  void dismiss(Strangers::iterator stranger, const std::string& why);

  const std::shared_ptr<const BusShared> bus_;
  const Greeted greeted_;
  asio::posix::stream_descriptor socket_;
  asio::steady_timer later_;
  Strangers strangers_;
};

}  // namespace zerva
