#include "runtime/libServiceExecutor/ExecutorCore.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "framework/CommsChannel.h"
#include "framework/ServiceThreadPoolIfc.h"
#include "framework/Threader.h"
#include "runtime/libClientUtils/ChannelState.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"
#include "runtime/libServiceExecutor/ExecutorLog.h"
#include "runtime/libServiceExecutor/TakenMessage.h"

namespace zerva {

namespace {

std::shared_ptr<Mailbox> mailboxOf(CommsChannelIfc* channel) {
  auto* const own = dynamic_cast<CommsChannel*>(channel);
  return own != nullptr ? own->state().mailbox : nullptr;
}

void unparkAll(const std::vector<std::shared_ptr<Parker>>& parkers) {
  for (const auto& parker : parkers) {
    parker->unpark();
  }
}

std::uint64_t nextId() {
  static std::atomic<std::uint64_t> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

constinit Spares queuePlaces(SpareKind::QueuePlace, [](void* place) { ::operator delete(place); });

}  // namespace

Spares& spareQueuePlaces() { return queuePlaces; }

ExecutorCore::ExecutorCore(ExecutorSettings settings)
    : settings_(std::move(settings)),
      id_(nextId()),
      channelName_(settings_.channel->getName()),
      mailbox_(mailboxOf(settings_.channel)),
      builder_(std::this_thread::get_id()),
      thread_(*this),
      service_(settings_.service) {
  if (service_ != nullptr) {
    what_.emplace(service_);
  }
  if (mailbox_ == nullptr) {
    EXECUTOR_LOG(2, "channel '%s' is not of this platform: its requests are not served",
                 channelName_.c_str());
  }
  if (Trace::on()) {
    TraceEvent(TraceKind::ExecutorMade)
        .forService(channelName_)
        .with(TraceKey::Channel, channelName_)
        .with(TraceKey::Interfaces, settings_.interfaces)
        .with(TraceKey::Mode, settings_.multiThreaded ? "MT" : "ST")
        .with(TraceKey::Lazy, settings_.lazy ? 1 : 0)
        .write();
  }
}

ExecutorCore::~ExecutorCore() = default;

void ExecutorCore::trace(TraceKind kind) const {
  if (!Trace::on()) return;
  TraceEvent(kind)
      .forService(channelName_)
      .with(TraceKey::Channel, channelName_)
      .with(TraceKey::Interfaces, settings_.interfaces)
      .write();
}

void ExecutorCore::start(Threader& threader, unsigned long& threadId) {
  threadId = 0;
  std::size_t waitingForPool = 0;
  {
    const std::lock_guard lock(mutex_);
    if (started_ || closed_) {
      return;
    }
    started_ = true;
    if (runsOnPool()) {
      waitingForPool = queue_.size();
      enterPool(waitingForPool);
    }
  }
  trace(TraceKind::ExecutorStarted);
  if (settings_.multiThreaded && !settings_.lazy) {
    handToPool(waitingForPool);
    return;
  }
  const TraceWorkScope itsThread(channelName_);
  if (!threader.spawn(&threadId, &thread_, channelName_, THREAD_PRIORITY_NORMAL, 0)) {
    EXECUTOR_LOG(2, "no thread for %s: its channel is closed", description().c_str());
    threadId = 0;
    shutdown();
  }
}

void ExecutorCore::shutdown() {
  Queue refused;
  {
    const std::lock_guard lock(mutex_);
    // What comes later finds it closed: there is nobody to be told again.
    if (closed_) return;
    closed_.store(true, std::memory_order_release);
    refused.swap(queue_);
    // First of all, since it takes no memory, without which the rest is left undone.
    unparkAll(waiting_);
    unparkAll(awaitingService_);
    if (ownParker_ != nullptr) ownParker_->unpark();
  }
  if (mailbox_ != nullptr) {
    mailbox_->close();
  }
  if (!refused.empty()) refuse(refused, "channel '" + channelName_ + "' was closed");
  trace(TraceKind::ExecutorStopped);
}

bool ExecutorCore::isIdle() const {
  const std::lock_guard lock(mutex_);
  return underWay_ == 0;
}

bool ExecutorCore::waitUntilIdle(Clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  ++awaitingIdle_;
  const bool idle = ended_.wait_until(lock, deadline, [this] { return underWay_ == 0; });
  --awaitingIdle_;
  return idle;
}

void ExecutorCore::waitUntilIdle() {
  std::unique_lock lock(mutex_);
  ++awaitingIdle_;
  ended_.wait(lock, [this] { return underWay_ == 0; });
  --awaitingIdle_;
}

std::string ExecutorCore::description() const {
  std::string what;
  {
    const std::lock_guard lock(mutex_);
    if (what_) what = what_->text();
  }
  if (what.empty()) what = "service of " + settings_.creator + " in " + settings_.lib;
  return what + " (interface '" + settings_.interfaces + "', channel '" + channelName_ + "')";
}

ExecutorProgress ExecutorCore::progress() const {
  ExecutorProgress progress{id_, 0, 0, {}, channelName_, settings_.interfaces};
  progress.failed = failed_.load(std::memory_order_relaxed);
  {
    const std::lock_guard lock(mutex_);
    progress.begun = begun_;
    progress.queued = queue_.size();
    progress.serving = underWay_;
    progress.making = creating_;
    if (causeQueued_ && progress.queued > 0) --progress.queued;
  }
  if (progress.queued > 0) progress.description = description();
  return progress;
}

Executable* ExecutorCore::service() const {
  const std::lock_guard lock(mutex_);
  return service_;
}

bool ExecutorCore::receive(Envelope& envelope) {
  Parker* woken = nullptr;  // there as long as this executor
  bool toPool = false;
  std::string error;
  if (Trace::on()) traceFirst(envelope);
  {
    const std::lock_guard lock(mutex_);
    if (closed_) {
      return false;
    }
    if (!finalError_.empty()) {
      error = finalError_;
    } else {
      toPool = started_ && runsOnPool();
      const bool ownChain = ownChain_ != 0 && envelope.chain.id() == ownChain_;
      if (!toPool && (ownThreadIdle_ || ownChain)) {
        woken = ownParker_.get();
      }
      // A timer's expiry is for a service that exists or is being made; it asks for none.
      if (service_ == nullptr && envelope.expiry == nullptr) {
        wish(envelope.chain);
      }
      queue_.push_back(std::move(envelope));
      if (toPool) enterPool(1);
    }
  }
  if (!error.empty()) {
    mailbox_->answer(envelope, nullptr, error);
  } else if (toPool) {
    handToPool(1);
  } else if (woken != nullptr) {
    woken->unpark();
  }
  return true;
}

/** The first request is told before it is there for a thread to take. */
void ExecutorCore::traceFirst(const Envelope& envelope) {
  if (envelope.expiry != nullptr || requested_.load(std::memory_order_relaxed)) return;
  if (requested_.exchange(true, std::memory_order_relaxed)) return;
  TraceEvent(TraceKind::FirstRequest)
      .forService(channelName_)
      .with(TraceKey::Channel, channelName_)
      .with(TraceKey::From, envelope.from())
      .with(TraceKey::By, Trace::servedByThisThread())
      .write();
}

bool ExecutorCore::isMaking() const {
  const std::lock_guard lock(mutex_);
  return creating_;
}

bool ExecutorCore::waitsForCaller() const {
  return !started_.load(std::memory_order_relaxed) && builder_ == std::this_thread::get_id();
}

void ExecutorCore::waitBegins(const std::shared_ptr<Parker>& parker) {
  const std::lock_guard lock(mutex_);
  waiting_.push_back(parker);
}

void ExecutorCore::waitEnds(const std::shared_ptr<Parker>& parker) {
  const std::lock_guard lock(mutex_);
  waiting_.erase(std::find(waiting_.begin(), waiting_.end(), parker));
}

bool ExecutorCore::serveNext(const CallChain& chain) {
  std::unique_lock lock(mutex_);
  if (runsOnPool()) {
    return false;
  }
  // The messages of the chain keep the order in which they came. While the service is being made
  // it serves only what the making itself waits for: the others come before it exists.
  const auto next = std::find_if(queue_.begin(), queue_.end(), [&](const Envelope& queued) {
    return creating_ ? queued.chain.isAwaitedBy(making_) : queued.chain.sameAs(chain);
  });
  if (next == queue_.end()) {
    return false;
  }
  Taken taken(*this, lock, next);
  Executable* target = service_;
  lock.unlock();
  if (servingThread().nesting >= kMaximumNestingOnOneThread) {
    failNested(taken.envelope(), "more than " + std::to_string(kMaximumNestingOnOneThread) +
                                     " requests inside each other on the thread of channel '" +
                                     channelName_ + "'");
    return true;
  }
  if (target == nullptr) {
    target = serviceInTheMaking();
  }
  if (target == nullptr) {
    failNested(taken.envelope(),
               "the service of channel '" + channelName_ + "' does not exist yet");
    return true;
  }
  serve(taken, *target);
  return true;
}

/** Refuses a message that its sender may not ask about. */
void ExecutorCore::failNested(Envelope& envelope, const std::string& error) {
  EXECUTOR_LOG(2, "a message from channel '%s' was not served: %s", envelope.from().c_str(),
               error.c_str());
  mailbox_->answer(envelope, nullptr, error);
}

void ExecutorCore::serveOnOwnThread() {
  const std::shared_ptr<Parker> parker = Parker::ofThisThread();
  std::unique_lock lock(mutex_);
  ownParker_ = parker;
  while (!closed_ && finalError_.empty() && !runsOnPool()) {
    if (service_ == nullptr && wished_) {
      makeService(lock);
    } else if (service_ != nullptr && !queue_.empty()) {
      serveOne(*parker, lock);
      ownChain_ = 0;
    } else {
      ownThreadIdle_ = true;
      lock.unlock();
      parker->park();
      lock.lock();
      ownThreadIdle_ = false;
    }
  }
}

/** Serves the first message of the queue, on the executor's own thread. */
void ExecutorCore::serveOne(Parker& parker, std::unique_lock<std::mutex>& lock) {
  const UnderWay underWay(*this, lock);
  Taken taken(*this, lock, queue_.begin());
  ownChain_ = taken.envelope().chain.id();
  Executable& service = *service_;
  lock.unlock();
  parker.isGivenWorkFrom(taken.envelope().input);
  serve(taken, service);
}

void ExecutorCore::serveOneOnPool() {
  std::shared_ptr<ExecutorCore> last;  // released without the lock
  std::unique_lock lock(mutex_);
  const InPool inPool(*this, last);
  if (queue_.empty()) {
    return;  // refused meanwhile
  }
  const UnderWay underWay(*this, lock);
  Taken taken(*this, lock, queue_.begin());
  Executable& service = *service_;
  lock.unlock();
  Parker::ofThisThread()->isGivenWorkFrom(taken.envelope().input);
  serve(taken, service);
}

/** Says, under the lock, that so many tasks are about to be handed to the pool. */
void ExecutorCore::enterPool(std::size_t tasks) {
  if (tasks > 0 && inPool_ == 0) heldByPool_ = shared_from_this();
  inPool_ += tasks;
}

/** Makes a task for each of so many requests, which `enterPool` was told of. */
void ExecutorCore::handToPool(std::size_t requests) {
  for (; requests > 0; --requests) {
    bool taken = false;
    // Whatever it is that the pool fails of: a request without its task would never be served.
    const auto error =
        exceptionOf([&] { taken = settings_.pool->execute([this] { serveOneOnPool(); }); });
    if (taken) {
      continue;
    }
    std::shared_ptr<ExecutorCore> last;  // released without the lock
    Queue refused;
    {
      const std::lock_guard lock(mutex_);
      const InPool inPool(*this, last);
      if (!queue_.empty()) refused.splice(refused.begin(), queue_, queue_.begin());
    }
    const std::string cause = "the pool has no thread for channel '" + channelName_ + "'";
    for (const Envelope& request : refused) {
      // Who asked is told, and may have nobody to tell.
      EXECUTOR_LOG(2, "a message from channel '%s' was not served: %s%s%s", request.from().c_str(),
                   cause.c_str(), error ? ": " : "", error ? error->c_str() : "");
    }
    refuse(refused, cause);
  }
}

void ExecutorCore::refuse(Queue& requests, const std::string& error) {
  for (Envelope& request : requests) {
    mailbox_->answer(request, nullptr, error);
  }
}

}  // namespace zerva
