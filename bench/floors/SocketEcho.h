#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "bench/harness/OtherProcess.h"

namespace zerva::bench {

/** What goes over a socket. */
struct SocketTraffic {
  /** Size of a message. */
  std::size_t there = 0;
  /** How many messages there are before an answer. */
  int messages = 1;
  /** Size of an answer. */
  std::size_t back = 0;
};

/** Two processes with a Unix socket between them, and nothing else. One thread uses it. */
class SocketEcho {
 public:
  explicit SocketEcho(SocketTraffic traffic);
  ~SocketEcho();
  SocketEcho(const SocketEcho&) = delete;
  SocketEcho& operator=(const SocketEcho&) = delete;

  /** Sends the messages of one answer, and waits for it. */
  void call();

 private:
  void serve() const;

  const SocketTraffic traffic_;
  const std::string there_;
  std::string back_;
  int near_ = -1;
  int far_ = -1;
  std::unique_ptr<OtherProcess> process_;
};

}  // namespace zerva::bench
