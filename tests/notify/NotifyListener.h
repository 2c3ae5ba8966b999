#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "tests/support/Patience.h"

namespace zerva {

/** Stands in for a service manager: a datagram socket that keeps what is sent to it. One thread. */
class NotifyListener {
 public:
  /** @param address a path, or an abstract name after an `@`. */
  explicit NotifyListener(const std::string& address);
  ~NotifyListener();
  NotifyListener(const NotifyListener&) = delete;
  NotifyListener& operator=(const NotifyListener&) = delete;

  /** Waits until a message holds the text. @returns false when none comes. */
  bool waitFor(const std::string& text, std::chrono::milliseconds deadline = patience());

  /** Waits for the next message that holds the text, later than all that came so far. */
  bool waitForAnother(const std::string& text, std::chrono::milliseconds deadline = patience());

  /** @returns whether some message that has come so far holds the text. */
  bool has(const std::string& text);

  /** @returns the messages that have come so far, in order. */
  const std::vector<std::string>& messages();

 private:
  void take();
  bool among(const std::string& text, std::size_t first);

  int descriptor_;
  std::vector<std::string> messages_;
};

}  // namespace zerva
