// How an executor gets a service that is made when it is first needed.

#include <algorithm>
#include <utility>

#include "FrameworkContext.h"
#include "framework/Service.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/ReplyTimeout.h"
#include "runtime/libClientUtils/Waiting.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"
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

/**
 * Makes the service.
 *
 * @param lock held, and the executor not shut down: from here on the making is under way, so that
 *     nobody who waits until nothing is under way overlooks it.
 */
void ExecutorCore::makeService(std::unique_lock<std::mutex>& lock) {
  const CallChain chain = wishChain_.ofRequest();
  wished_ = false;
  creating_ = true;
  // It stays there until the service exists, while work for it is under way.
  causeQueued_ = !queue_.empty();
  ++begun_;
  creatingThread_ = std::this_thread::get_id();
  making_ = chain;
  ownChain_ = chain.id();
  const UnderWay underWay(*this, lock);
  lock.unlock();
  const Made made = callContext(chain);
  if (made.service == nullptr) {
    EXECUTOR_LOG(2, "%s: %s", description().c_str(), made.error.c_str());
  }
  settle(made);
}

ExecutorCore::Made ExecutorCore::callContext(const CallChain& chain) {
  const ServingScope scope(this, chain);
  Service* service = nullptr;
  const auto error = exceptionOf([&] {
    service = settings_.context->initialiseService(
        settings_.owner, settings_.lib, settings_.creator, settings_.channel, settings_.interfaces);
  });
  if (error) {
    // Only the text is kept: the exception's type may live in the library that goes.
    return {nullptr, "the service could not be made: " + *error, true};
  }
  if (service == nullptr) {
    return {nullptr, "the service could not be made; the next request tries again", false};
  }
  return {service, {}, false};
}

/** Tells everyone who waits how the making ended. */
void ExecutorCore::settle(const Made& made) {
  std::optional<Description> what;
  if (made.service != nullptr) {
    what.emplace(made.service);
  }
  Queue refused;
  std::size_t forPool = 0;
  std::vector<std::shared_ptr<Parker>> woken;
  {
    const std::lock_guard lock(mutex_);
    creating_ = false;
    causeQueued_ = false;
    creatingThread_ = {};
    making_ = {};
    ownChain_ = 0;
    ++attempts_;
    service_ = made.service;
    if (service_ != nullptr) {
      what_.swap(what);
    }
    woken = awaitingService_;
    if (made.service == nullptr) {
      refused.swap(queue_);
      wished_ = false;
      if (made.final) {
        finalError_ = made.error;
      }
    } else if (settings_.multiThreaded) {
      forPool = queue_.size();
      enterPool(forPool);
    }
  }
  for (const auto& parker : woken) {
    parker->unpark();
  }
  handToPool(forPool);
  if (!refused.empty()) refuse(refused, "channel '" + channelName_ + "': " + made.error);
}

/** @returns, under the lock, whether `initService` has nothing to wait for. */
bool ExecutorCore::nothingToAwait(const CallChain& chain) const {
  if (!settings_.lazy || service_ != nullptr || !started_ || closed_ || !finalError_.empty()) {
    return true;
  }
  // The making waits for this very thread, directly or along its chain of requests.
  return creating_ && (creatingThread_ == std::this_thread::get_id() || chain.isAwaitedBy(making_));
}

void ExecutorCore::awaitService() {
  const std::shared_ptr<Parker> parker = Parker::ofThisThread();
  ServingThread& thread = servingThread();
  std::shared_ptr<Parker> maker;
  unsigned attemptsBefore = 0;
  {
    const std::lock_guard lock(mutex_);
    if (nothingToAwait(thread.chain())) {
      return;
    }
    wish(thread.chain() ? thread.chain() : CallChain::begin());
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
  // A making that asks, on behalf of another chain, a service that waits here does not end before
  // its own request is given up; so this one is, too.
  const auto deadline = Clock::now() + replyTimeout();
  const std::int64_t begin = Trace::begin();
  bool inTime = true;
  {
    const WaitingScope waiting;
    while (inTime && !over() && (thread.serving == nullptr || !thread.serving->isShutDown())) {
      if (thread.serving == nullptr || !thread.serving->serveNext(thread.chain())) {
        inTime = parker->park(deadline);
      }
    }
  }
  if (begin != 0) {
    TraceEvent(TraceKind::Waited)
        .since(begin)
        .with(TraceKey::For, "creation")
        .with(TraceKey::Channel, channelName_)
        .write();
  }
  {
    const std::lock_guard lock(mutex_);
    awaitingService_.erase(std::find(awaitingService_.begin(), awaitingService_.end(), parker));
    inTime = inTime || attempts_ != attemptsBefore || closed_;
  }
  // Whoever waited may now use a service that is not ready, and this is all that tells why.
  if (!inTime) {
    EXECUTOR_LOG(2, "%s: to make it takes longer than the reply time-out; it is not waited for",
                 description().c_str());
  }
}

/** @returns, while the service is being made, what is recorded of it already; or null. */
Executable* ExecutorCore::serviceInTheMaking() {
  const std::string& names = settings_.interfaces;
  return settings_.context->findRealService(names.substr(0, names.find(' ')), channelName_);
}

}  // namespace zerva
