#include "runtime/libClientUtils/ServingThread.h"

namespace zerva {

ServingThread& servingThread() {
  thread_local ServingThread thread;
  return thread;
}

ServingScope::ServingScope(Serving* serving, const CallChain& chain) : before_(servingThread()) {
  ServingThread& thread = servingThread();
  thread.serving = serving;
  thread.chain = chain;
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

}  // namespace zerva
