#pragma once

#include <chrono>

#include "runtime/libClientUtils/ReplyTimeout.h"

namespace zerva {

/** Sets the reply time-out as long as it lives. */
class ReplyTimeoutIs {
 public:
  explicit ReplyTimeoutIs(std::chrono::milliseconds timeout) { setReplyTimeout(timeout); }
  ~ReplyTimeoutIs() { setReplyTimeout(before_); }
  ReplyTimeoutIs(const ReplyTimeoutIs&) = delete;
  ReplyTimeoutIs& operator=(const ReplyTimeoutIs&) = delete;

 private:
  const std::chrono::milliseconds before_ = replyTimeout();
};

}  // namespace zerva
