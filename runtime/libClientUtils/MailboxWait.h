#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "runtime/libClientUtils/Mailbox.h"

namespace zerva {

/**
 * A thread's wait for the end of a request. Whoever ends the request writes it. The request is not
 * outstanding any more when its wait ends, however it ends.
 */
struct Mailbox::Wait {
  Wait(Mailbox& theMailbox, std::uint32_t theRequestId)
      : mailbox(theMailbox), requestId(theRequestId) {}
  ~Wait() {
    if (!noted || ended) return;
    const std::lock_guard lock(mailbox.mutex_);
    if (!ended) mailbox.outstanding_.remove(requestId);
  }
  Wait(const Wait&) = delete;
  Wait& operator=(const Wait&) = delete;

  Mailbox& mailbox;
  const std::uint32_t requestId;
  bool noted = false;  // with the request; the thread's own
  std::shared_ptr<Destination> asked;
  std::shared_ptr<Input> input;
  Clock::time_point deadline;
  std::shared_ptr<Parker> parker = Parker::ofThisThread();  // until it has ended
  std::atomic<bool> ended{false};
  Outcome outcome;  // once it has ended
};

}  // namespace zerva
