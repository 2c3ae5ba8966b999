#pragma once

#include <string>

namespace zerva {

/**
 * Where a service manager listens for how one of its services is: a Unix datagram socket. Nothing
 * is sent when there is none. Any thread may send.
 */
class NotifySocket {
 public:
  /**
   * @param address a path, or an abstract name after an `@`; empty for none.
   * @throws std::runtime_error when it cannot be used.
   */
  explicit NotifySocket(const std::string& address);
  ~NotifySocket();
  NotifySocket(const NotifySocket&) = delete;
  NotifySocket& operator=(const NotifySocket&) = delete;

  /** Whether anybody listens. */
  bool isThere() const { return descriptor_ >= 0; }

  /**
   * Sends what must arrive; waits a few seconds for a listener that is busy.
   *
   * @returns whether it was sent.
   */
  bool send(const std::string& text) const { return send(text, 0); }

  /** Sends what the next one makes up for; does not wait. @returns whether it was sent. */
  bool trySend(const std::string& text) const;

 private:
  bool send(const std::string& text, int flags) const;

  int descriptor_ = -1;
  std::string address_;  // as the system has it
};

}  // namespace zerva
