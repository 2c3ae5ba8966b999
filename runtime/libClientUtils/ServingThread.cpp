#include "runtime/libClientUtils/ServingThread.h"

#include <utility>

namespace zerva {

namespace {

[[gnu::tls_model("initial-exec")]] constinit thread_local bool forOthers = false;

}  // namespace

ServingThread& servingThread() {
  // Nothing has to be looked up for it: the library is there from the start.
  [[gnu::tls_model("initial-exec")]] constinit static thread_local ServingThread thread;
  return thread;
}

const CallChain& ServingThread::chain() const {
  // Never destroyed, since threads may ask for it while the process ends.
  static const auto* const none = new CallChain;
  return served != nullptr ? *served : *none;
}

ServingScope::ServingScope(Serving* serving, const CallChain& chain)
    : thread_(servingThread()), before_(thread_) {
  thread_.serving = serving;
  thread_.served = &chain;
  ++thread_.nesting;
}

ServingScope::~ServingScope() { thread_ = before_; }

WaitingScope::WaitingScope(const ServingThread& thread)
    : serving_(thread.serving), place_(thread.place) {
  if (serving_ != nullptr) {
    serving_->waitBegins(Parker::ofThisThread());
  }
  if (place_ != nullptr) {
    place_->leave();
  }
}

WaitingScope::~WaitingScope() {
  if (place_ != nullptr) {
    place_->comeBack();
  }
  if (serving_ != nullptr) {
    serving_->waitEnds(Parker::ofThisThread());
  }
}

ForOthersScope::ForOthersScope()
    : before_(servingThread()), outer_(std::exchange(forOthers, true)) {
  servingThread() = ServingThread();
}

ForOthersScope::~ForOthersScope() {
  forOthers = outer_;
  servingThread() = before_;
}

bool ForOthersScope::on() { return forOthers; }

}  // namespace zerva
