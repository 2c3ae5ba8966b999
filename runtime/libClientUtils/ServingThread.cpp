#include "runtime/libClientUtils/ServingThread.h"

namespace zerva {

ServingThread& servingThread() {
  thread_local ServingThread thread;
  return thread;
}

const CallChain& ServingThread::chain() const {
  // Never destroyed, since threads may ask for it while the process ends.
  static const auto* const none = new CallChain;
  return served != nullptr ? *served : *none;
}

ServingScope::ServingScope(Serving* serving, const CallChain& chain) : before_(servingThread()) {
  ServingThread& thread = servingThread();
  thread.serving = serving;
  thread.served = &chain;
  ++thread.nesting;
}

ServingScope::~ServingScope() { servingThread() = before_; }

WaitingScope::WaitingScope() : serving_(servingThread().serving), place_(servingThread().place) {
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

ForOthersScope::ForOthersScope() : before_(servingThread()) { servingThread() = ServingThread(); }

ForOthersScope::~ForOthersScope() { servingThread() = before_; }

}  // namespace zerva
