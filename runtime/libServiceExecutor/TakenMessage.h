#pragma once

#include <memory>
#include <mutex>
#include <utility>

#include "framework/CommsChannelDataContainerMessage.h"
#include "runtime/libClientUtils/Lookups.h"
#include "runtime/libServiceExecutor/ExecutorCore.h"

namespace zerva {

struct ExecutorCore::Handed {
  CommsChannelDataContainerMessage message;
  CommsChannelDataContainerMessage reply;
};

/**
 * A message that was taken out of the queue, to be served. Made under the lock, which may be
 * released meanwhile, and is held again afterwards.
 */
class ExecutorCore::Taken {
 public:
  Taken(ExecutorCore& core, std::unique_lock<std::mutex>& lock, Queue::iterator which)
      : core_(core), lock_(lock), handed_(std::move(core.spareHanded_)) {
    place_.splice(place_.begin(), core.queue_, which);
    ++core.begun_;
    if (const Callee& callee = place_.front().callee) {
      known_ = core.knownInvokers_.find(callee, Lookups::age());
    }
  }
  ~Taken() {
    // Not under the lock: whoever still waits for an answer gets one.
    if (lock_.owns_lock()) lock_.unlock();
    place_.clear();
    lock_.lock();
    if (core_.spareHanded_ == nullptr && !handedIsUsed_) core_.spareHanded_ = std::move(handed_);
  }
  Taken(const Taken&) = delete;
  Taken& operator=(const Taken&) = delete;

  Envelope& envelope() { return place_.front(); }
  const Envelope& envelope() const { return place_.front(); }

  /** @returns with what such a call was made before. */
  const KnownInvoker& known() const { return known_; }

  /** @returns what the service gets; it is used again only when `handedIsEmpty` says so. */
  Handed& handed() {
    if (handed_ == nullptr) handed_ = std::make_unique<Handed>();
    handedIsUsed_ = true;
    return *handed_;
  }

  void handedIsEmpty() { handedIsUsed_ = false; }

 private:
  ExecutorCore& core_;
  std::unique_lock<std::mutex>& lock_;
  Queue place_;
  std::unique_ptr<Handed> handed_;
  bool handedIsUsed_ = false;
  KnownInvoker known_;
};

}  // namespace zerva
