#include "runtime/libClientUtils/ReplyTimeout.h"

#include <atomic>

namespace zerva {

namespace {

constexpr std::chrono::milliseconds::rep kDefault = 10'000;
std::atomic<std::chrono::milliseconds::rep> timeoutMilliseconds{kDefault};

}  // namespace

void setReplyTimeout(std::chrono::milliseconds timeout) {
  timeoutMilliseconds.store(timeout.count(), std::memory_order_relaxed);
}

std::chrono::milliseconds replyTimeout() {
  return std::chrono::milliseconds(timeoutMilliseconds.load(std::memory_order_relaxed));
}

}  // namespace zerva
