#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <memory>
#include <string>

#include "runtime/libClientUtils/bus/Connection.h"
#include "runtime/libClientUtils/bus/Frames.h"

namespace zerva {

/** A connection whose other end the test holds; the bus thread runs when the test says so. */
class ConnectionWorld : public testing::Test {
 protected:
  ConnectionWorld() {
    watch->start();
    connect();
  }

  /** Begins with another connection. */
  void connect() {
    int sockets[2] = {};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, sockets), 0);
    other = FileDescriptor(sockets[1]);
    sut = std::make_shared<Connection>(watch, FileDescriptor(sockets[0]), kMaximumFrame);
  }

  void say(const std::string& bytes) const {
    EXPECT_EQ(::send(other.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(bytes.size()));
  }

  void runBusThread() const {
    context->restart();
    context->poll();
  }

  const std::shared_ptr<asio::io_context> context = std::make_shared<asio::io_context>(1);
  const std::shared_ptr<SocketWatch> watch = std::make_shared<SocketWatch>(context);
  FileDescriptor other;
  std::shared_ptr<Connection> sut;
};

}  // namespace zerva
