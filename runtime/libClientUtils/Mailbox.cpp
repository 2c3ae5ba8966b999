#include "runtime/libClientUtils/Mailbox.h"

#include <utility>
#include <vector>

#include "framework/CCInterceptorDispatcher.h"
#include "framework/Logging.h"
#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/ServingThread.h"
#include "runtime/libClientUtils/Texts.h"

namespace zerva {

namespace {

std::size_t sizeOf(const Payload& data) { return data != nullptr ? data->size() : 0; }

std::uint64_t newNumber() {
  static std::atomic<std::uint64_t> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

}  // namespace

/**
 * While it lives, somebody uses the receiver or the dispatcher; the channel's end waits for that.
 * It is counted first and looked for a receiver then, so that whoever closes the mailbox either
 * finds it counted, or has it find no receiver.
 */
class Mailbox::Delivery {
 public:
  explicit Delivery(const Mailbox& mailbox) : mailbox_(mailbox) { ++mailbox_.deliveries_; }
  ~Delivery() {
    if (--mailbox_.deliveries_ == 0 && mailbox_.closed_) {
      const std::lock_guard lock(mailbox_.mutex_);
      mailbox_.delivered_.notify_all();
    }
  }
  Delivery(const Delivery&) = delete;
  Delivery& operator=(const Delivery&) = delete;

  /** @returns who takes requests now; null for nobody. */
  RequestReceiver* receiver() const {
    return mailbox_.served_ ? mailbox_.receiver_.get() : nullptr;
  }

 private:
  const Mailbox& mailbox_;
};

/** A thread's wait for the end of a request. Whoever ends the request writes it. */
struct Mailbox::Wait {
  std::shared_ptr<Destination> asked;
  std::shared_ptr<Input> input;
  Clock::time_point deadline;
  std::shared_ptr<Parker> parker;
  std::atomic<bool> ended{false};
  Outcome outcome;  // once it has ended
};

/** Sees to it that a request is not outstanding any more when its wait ends, however it ends. */
class Mailbox::Forgetting {
 public:
  Forgetting(Mailbox& mailbox, std::uint32_t requestId, const Wait& wait)
      : mailbox_(mailbox), requestId_(requestId), wait_(wait) {}
  ~Forgetting() {
    if (wait_.ended) {
      return;
    }
    const std::lock_guard lock(mailbox_.mutex_);
    if (!wait_.ended) {
      mailbox_.forget(mailbox_.outstanding_.find(requestId_));
    }
  }
  Forgetting(const Forgetting&) = delete;
  Forgetting& operator=(const Forgetting&) = delete;

 private:
  Mailbox& mailbox_;
  const std::uint32_t requestId_;
  const Wait& wait_;
};

Mailbox::Mailbox(const std::string& name, CCInterceptorDispatcher* dispatcher)
    : name_(sharedName(name)), number_(newNumber()), dispatcher_(dispatcher) {}

Mailbox::~Mailbox() = default;

Mailbox::Serves Mailbox::serves(const Executable* object) const {
  const Delivery delivery(*this);
  const RequestReceiver* const serving = delivery.receiver();
  if (serving == nullptr) {
    return Serves::Another;
  }
  if (serving->isMaking()) {
    return Serves::OneInTheMaking;
  }
  return serving->object() == object ? Serves::Object : Serves::Another;
}

void Mailbox::serveWith(std::shared_ptr<RequestReceiver> receiver) {
  {
    const std::lock_guard lock(mutex_);
    if (closed_) {
      return;
    }
    receiver_ = std::move(receiver);
    served_ = true;
  }
  ChannelDirectory::instance().servedMayHaveChanged(name());
}

/** @returns whether an interceptor is to be told of what the channel does. */
bool Mailbox::isSeen() const { return dispatcher_ != nullptr && dispatcher_->hasInterceptors(); }

bool Mailbox::deliver(Envelope& envelope) {
  const Delivery delivery(*this);
  RequestReceiver* const taker = delivery.receiver();
  if (taker == nullptr) {
    return false;
  }
  if (isBorrowed(envelope.data)) envelope.data = kept(std::move(envelope.data));
  // Told before the request is handed over, so that it is seen before its reply.
  if (envelope.expiry == nullptr && isSeen()) {
    dispatcher_->dispatchReceived(
        {envelope.from(), name(), sizeOf(envelope.data), envelope.ticket.requestId(), false, {}});
  }
  return taker->receive(envelope);
}

std::string Mailbox::server() const { return "here " + std::to_string(number_); }

bool Mailbox::waitsForCaller() const {
  const Delivery delivery(*this);
  const RequestReceiver* const serving = delivery.receiver();
  return serving != nullptr && serving->waitsForCaller();
}

bool Mailbox::isStarted() const {
  // Each request asks, and a receiver is started once.
  if (started_.load(std::memory_order_relaxed)) return true;
  const Delivery delivery(*this);
  const RequestReceiver* const serving = delivery.receiver();
  const bool started = serving != nullptr && serving->isStarted();
  if (started) started_.store(true, std::memory_order_relaxed);
  return started;
}

void Mailbox::answer(Envelope& request, Payload data, const std::string& error) {
  if (request.ticket.requestId() == 0) {
    return;
  }
  if (isSeen()) {
    dispatcher_->dispatchSent(
        {name(), request.from(), sizeOf(data), request.ticket.requestId(), true, error});
  }
  if (error.empty()) {
    request.ticket.answer(std::move(data));
  } else {
    request.ticket.fail(error);
  }
}

void Mailbox::receiveReply(std::uint32_t requestId, std::uint64_t answerer, Payload data,
                           const std::string& error) {
  std::shared_ptr<Parker> waiter;
  {
    std::unique_lock lock(mutex_);
    auto request = awaited(requestId, answerer);
    // While a request is awaited the channel is there, and so is its dispatcher.
    if (request != outstanding_.end() && isSeen()) {
      tellReceived(lock, requestId, sizeOf(data), error);
      request = awaited(requestId, answerer);  // it may have been given up meanwhile
    }
    if (request == outstanding_.end()) {
      return;
    }
    waiter = end(request, {std::move(data), error});
  }
  if (waiter != nullptr) {
    waiter->unpark();
  }
}

/**
 * Tells the interceptors of an awaited reply, before it is handed over, so that whoever gets it
 * finds it counted. What goes wrong with them is not to keep the reply from who waits for it. The
 * lock is released meanwhile.
 */
void Mailbox::tellReceived(std::unique_lock<std::mutex>& lock, std::uint32_t requestId,
                           std::size_t size, const std::string& error) {
  {
    const Delivery delivery(*this);
    const SharedName from = outstanding_.at(requestId).to;
    lock.unlock();
    const auto failure = exceptionOf([&] {
      dispatcher_->dispatchReceived({textOf(from), name(), size, requestId, true, error});
    });
    if (failure) {
      logAppUni("Channels", "runtime/libClientUtils", 2, __LINE__,
                "a reply to channel '%s' was not told to the interceptors: %s", name().c_str(),
                failure->c_str());
    }
  }
  lock.lock();
}

/**
 * @returns, under the lock, the request that a reply is for; none when nobody waits any more, or
 *     when it is the reply to an earlier request with that id, or to nothing that was asked.
 */
Mailbox::Requests::iterator Mailbox::awaited(std::uint32_t requestId, std::uint64_t answerer) {
  const auto found = outstanding_.find(requestId);
  const bool waitsForIt =
      found != outstanding_.end() && !found->second.outcome && found->second.answerer == answerer;
  return waitsForIt ? found : outstanding_.end();
}

/**
 * Ends a request that has not ended yet, under the lock.
 *
 * @returns whom to unpark without the lock; null for nobody.
 */
std::shared_ptr<Parker> Mailbox::end(Requests::iterator which, Outcome how) {
  Wait* const wait = which->second.wait;
  if (wait == nullptr) {
    which->second.outcome = std::move(how);
    return nullptr;
  }
  forget(which);
  std::shared_ptr<Parker> waiter = std::move(wait->parker);
  wait->outcome = std::move(how);
  wait->ended.store(true, std::memory_order_release);  // from here on it may be gone
  return waiter;
}

Mailbox::Outcome Mailbox::awaitReply(std::uint32_t requestId) {
  Wait wait;
  if (std::string error = startWaiting(requestId, wait); !error.empty()) {
    return {nullptr, std::move(error)};
  }
  const Forgetting forgetting(*this, requestId, wait);
  std::string error = waitFor(requestId, wait);
  // One that ended at the last moment has ended.
  return wait.ended ? std::move(wait.outcome) : Outcome{nullptr, std::move(error)};
}

/** Waits until a request has ended. @returns why nobody waits any longer when it has not. */
std::string Mailbox::waitFor(std::uint32_t requestId, Wait& wait) {
  if (wait.ended) {
    return {};
  }
  if (const auto asked = std::move(wait.asked); asked != nullptr && asked->waitsForCaller()) {
    return "channel '" + channelAsked(requestId) +
           "' answers only after the waiting thread has started it";
  }
  ServingThread& thread = servingThread();
  Parker& parker = *Parker::ofThisThread();
  const WaitingScope waiting;
  bool inTime = true;
  while (!wait.ended) {
    if (thread.serving != nullptr && thread.serving->isShutDown()) {
      return "the service that waits for channel '" + channelAsked(requestId) + "' was shut down";
    }
    if (!inTime) {
      return "channel '" + channelAsked(requestId) + "' did not answer in time";
    }
    if (thread.serving == nullptr || !thread.serving->serveNext(thread.chain())) {
      inTime = parker.park(wait.deadline, wait.input.get());
    }
  }
  return {};
}

/** @returns why a request cannot be waited for; empty when it can, or has ended already. */
std::string Mailbox::startWaiting(std::uint32_t requestId, Wait& wait) {
  const std::lock_guard lock(mutex_);
  const auto found = outstanding_.find(requestId);
  if (found == outstanding_.end()) {
    return closed_ ? "channel '" + name() + "' is closed"
                   : "request " + std::to_string(requestId) + " of channel '" + name() +
                         "' is not outstanding";
  }
  Outstanding& request = found->second;
  if (request.wait != nullptr) {
    return "another thread waits for request " + std::to_string(requestId) + " of channel '" +
           name() + "'";
  }
  if (request.outcome) {
    wait.outcome = *std::move(request.outcome);
    wait.ended = true;
    forget(found);
    return {};
  }
  wait.asked = request.asked.lock();
  wait.input = request.input.lock();
  wait.deadline = request.deadline;
  wait.parker = Parker::ofThisThread();
  request.wait = &wait;
  return {};
}

/** @returns the channel that a request which has not ended was sent to. */
std::string Mailbox::channelAsked(std::uint32_t requestId) const {
  const std::lock_guard lock(mutex_);
  const auto found = outstanding_.find(requestId);
  return found != outstanding_.end() ? textOf(found->second.to) : std::string();
}

/** Takes a request out, under the lock. */
void Mailbox::forget(Requests::iterator which) {
  if (!spare_.empty()) {
    outstanding_.erase(which);
    return;
  }
  spare_ = outstanding_.extract(which);
  spare_.mapped().clear();
}

void Mailbox::dropForgotten(Clock::time_point now) {
  for (auto it = outstanding_.begin(); it != outstanding_.end();) {
    const bool forgotten = it->second.wait == nullptr && it->second.deadline < now;
    it = forgotten ? outstanding_.erase(it) : std::next(it);
  }
}

void Mailbox::close() {
  bool wasServed = false;
  std::vector<std::shared_ptr<Parker>> waiters;
  {
    const std::lock_guard lock(mutex_);
    if (closed_) {
      return;
    }
    closed_ = true;
    wasServed = served_.exchange(false);
    for (auto it = outstanding_.begin(); it != outstanding_.end();) {
      const auto request = it++;
      if (request->second.outcome) {
        continue;
      }
      if (auto waiter = end(request, {nullptr, "channel '" + name() + "' was closed"})) {
        waiters.push_back(std::move(waiter));
      }
    }
  }
  for (const auto& waiter : waiters) {
    waiter->unpark();
  }
  if (wasServed) {
    ChannelDirectory::instance().servedMayHaveChanged(name());
  }
}

void Mailbox::waitForDeliveries() {
  {
    std::unique_lock lock(mutex_);
    delivered_.wait(lock, [this] { return deliveries_ == 0; });
  }
  receiver_.reset();
}

}  // namespace zerva
