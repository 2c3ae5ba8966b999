#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "runtime/libClientUtils/ChannelState.h"

namespace zerva {

/** What serves a channel and never gets to its messages by itself. */
class BusyReceiver final : public RequestReceiver {
 public:
  explicit BusyReceiver(const Executable* object) : object_(object) {}

  bool receive(Envelope& envelope) override {
    const std::lock_guard lock(mutex_);
    envelopes_.push_back(std::move(envelope));
    return true;
  }
  bool waitsForCaller() const override { return false; }
  const Executable* object() const override { return object_; }
  bool isMaking() const override { return false; }

  std::size_t waiting() const {
    const std::lock_guard lock(mutex_);
    return envelopes_.size();
  }

  /** Gives away what waits. */
  std::vector<Envelope> take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(envelopes_, {});
  }

 private:
  const Executable* const object_;
  mutable std::mutex mutex_;
  std::vector<Envelope> envelopes_;  // guarded by mutex_
};

}  // namespace zerva
