// How an executor gets a service that is made when it is first needed.

#include <algorithm>
#include <utility>

#include "FrameworkContext.h"
#include "framework/Service.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libServiceExecutor/ExecutorCore.h"
#include "runtime/libServiceExecutor/ExecutorLog.h"

namespace zerva {

/** Notes, under the lock, that the service is needed; who needs it first gives the chain. */
void ExecutorCore::wish(const CallChain& chain) {
  if (settings_.lazy && !wished_ && !creating_) {
    wished_ = true;
    wishChain_ = chain;
  }
}

void ExecutorCore::makeService() {
  CallChain chain;
  {
    const std::lock_guard lock(mutex_);
    chain = wishChain_;
    wished_ = false;
    creating_ = true;
    creatingThread_ = std::this_thread::get_id();
    ownChain_ = chain.id;
    ++underWay_;
  }
  const Made made = callContext(chain);
  if (made.service == nullptr) {
    EXECUTOR_LOG(2, "%s: %s", description().c_str(), made.error.c_str());
  }
  settle(made);
  requestEnded();
}

ExecutorCore::Made ExecutorCore::callContext(const CallChain& chain) {
  const ServingScope scope(this, chain);
  try {
    Service* const service = settings_.context->initialiseService(
        settings_.owner, settings_.lib, settings_.creator, settings_.channel, settings_.interfaces);
    if (service != nullptr) {
      return {service, {}, false};
    }
    return {nullptr, "the service could not be made; the next request tries again", false};
  } catch (...) {
    // Only the text is kept: the exception's type may live in the library that goes.
    return {nullptr, "the service could not be made: " + currentExceptionText(), true};
  }
}

/** Tells everyone who waits how the making ended. */
void ExecutorCore::settle(const Made& made) {
  std::deque<Envelope> refused;
  std::size_t forPool = 0;
  std::vector<std::shared_ptr<Parker>> woken;
  {
    const std::lock_guard lock(mutex_);
    creating_ = false;
    creatingThread_ = {};
    ownChain_ = 0;
    ++attempts_;
    service_ = made.service;
    woken = awaitingService_;
    if (made.service == nullptr) {
      refused.swap(queue_);
      wished_ = false;
      if (made.final) {
        finalError_ = made.error;
      }
    } else if (settings_.multiThreaded) {
      forPool = queue_.size();
    }
  }
  for (const auto& parker : woken) {
    parker->unpark();
  }
  refuse(refused, "channel '" + channelName_ + "': " + made.error);
  handToPool(forPool);
}

/** @returns, under the lock, whether `initService` has nothing to wait for. */
bool ExecutorCore::nothingToAwait(const CallChain& chain) const {
  if (!settings_.lazy || service_ != nullptr || !started_ || closed_ || !finalError_.empty()) {
    return true;
  }
  // The creation waits for this very thread, directly or along its chain of calls.
  return creating_ && (creatingThread_ == std::this_thread::get_id() ||
                       (chain.id != 0 && chain.id == wishChain_.id));
}

void ExecutorCore::awaitService() {
  const std::shared_ptr<Parker> parker = Parker::ofThisThread();
  ServingThread& thread = servingThread();
  std::shared_ptr<Parker> maker;
  unsigned attemptsBefore = 0;
  {
    const std::lock_guard lock(mutex_);
    if (nothingToAwait(thread.chain)) {
      return;
    }
    wish(thread.chain.id != 0 ? thread.chain : newCallChain());
    attemptsBefore = attempts_;
    awaitingService_.push_back(parker);
    maker = ownParker_;
  }
  if (maker != nullptr) {
    maker->unpark();
  }
  const auto over = [&] {
    const std::lock_guard lock(mutex_);
    return attempts_ != attemptsBefore || closed_;
  };
  const WaitingScope waiting;
  while (!over() && (thread.serving == nullptr || !thread.serving->isShutDown())) {
    if (thread.serving == nullptr || !thread.serving->serveNext(thread.chain)) {
      parker->park();
    }
  }
  const std::lock_guard lock(mutex_);
  awaitingService_.erase(std::find(awaitingService_.begin(), awaitingService_.end(), parker));
}

/** @returns, while the service is being made, what is recorded of it already; or null. */
Executable* ExecutorCore::serviceInTheMaking() {
  const std::string& names = settings_.interfaces;
  return settings_.context->findRealService(names.substr(0, names.find(' ')), channelName_);
}

}  // namespace zerva
