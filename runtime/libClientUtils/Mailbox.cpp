#include "runtime/libClientUtils/Mailbox.h"

#include <utility>
#include <vector>

#include "framework/CCInterceptorDispatcher.h"
#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/ReplyTimeout.h"
#include "runtime/libClientUtils/ServingThread.h"

namespace zerva {

namespace {

// Requests whose sender never asks for the reply are looked for when this many are outstanding.
constexpr std::size_t kManyOutstanding = 64;

std::uint64_t newInstance() {
  static std::atomic<std::uint64_t> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

std::size_t sizeOf(const Payload& data) { return data != nullptr ? data->size() : 0; }

/** @returns the chain of a request that the calling thread sends. */
CallChain nextInChain() {
  const CallChain& served = servingThread().chain;
  return served.id == 0 ? newCallChain() : CallChain{served.id, served.depth + 1};
}

}  // namespace

Mailbox::Mailbox(std::string name, CCInterceptorDispatcher* dispatcher)
    : name_(std::move(name)), instance_(newInstance()), dispatcher_(dispatcher) {}

Mailbox::~Mailbox() = default;

Mailbox::Serves Mailbox::serves(const Executable* object) const {
  const auto serving = receiver();
  if (serving == nullptr) {
    return Serves::Nothing;
  }
  const Executable* const served = serving->object();
  if (served == nullptr) {
    return Serves::NotKnownYet;
  }
  return served == object ? Serves::Object : Serves::AnotherObject;
}

void Mailbox::serveWith(std::shared_ptr<RequestReceiver> receiver) {
  const std::lock_guard lock(mutex_);
  if (!closed_) {
    receiver_ = std::move(receiver);
    served_.store(true, std::memory_order_release);
  }
}

std::shared_ptr<RequestReceiver> Mailbox::receiver() const {
  const std::lock_guard lock(mutex_);
  return receiver_;
}

std::string Mailbox::send(const std::string& to, Payload data, std::uint32_t requestId) {
  const auto destination = ChannelDirectory::instance().find(to);
  if (requestId != 0) {
    if (std::string error = expect(requestId, to, destination); !error.empty()) {
      return error;
    }
  } else if (const std::lock_guard lock(mutex_); closed_) {
    return "channel '" + name_ + "' is closed";
  }
  if (destination == nullptr) {
    return endWith(requestId, "nobody serves channel '" + to + "'");
  }
  Envelope envelope{name_, to, std::move(data), nextInChain(), {}, nullptr};
  if (envelope.chain.depth > kMaximumChainDepth) {
    return endWith(requestId, "more than " + std::to_string(kMaximumChainDepth) +
                                  " requests wait for one another before channel '" + to + "'");
  }
  if (requestId != 0) {
    envelope.ticket = ReplyTicket(weak_from_this(), requestId);
    envelope.ticket.answerAs(destination->instance());
  }
  if (dispatcher_ != nullptr) {
    dispatcher_->dispatchSent({name_, to, sizeOf(envelope.data), requestId, false, {}});
  }
  if (!destination->deliver(envelope)) {
    envelope.ticket.cancel();
    return endWith(requestId, "channel '" + to + "' was closed");
  }
  return {};
}

bool Mailbox::deliver(Envelope& envelope) {
  std::shared_ptr<RequestReceiver> taker;
  {
    const std::lock_guard lock(mutex_);
    if (receiver_ == nullptr) {
      return false;
    }
    taker = receiver_;
    ++deliveries_;
  }
  // Told before the request is handed over, so that it is seen before its reply.
  if (dispatcher_ != nullptr && envelope.expiry == nullptr) {
    dispatcher_->dispatchReceived(
        {envelope.from, name_, sizeOf(envelope.data), envelope.ticket.requestId(), false, {}});
  }
  const bool taken = taker->receive(envelope);
  deliveryEnds();
  return taken;
}

bool Mailbox::waitsForCaller() const {
  const auto serving = receiver();
  return serving != nullptr && serving->waitsForCaller();
}

void Mailbox::answer(Envelope& request, Payload data, const std::string& error) {
  if (request.ticket.requestId() == 0) {
    return;
  }
  if (dispatcher_ != nullptr) {
    dispatcher_->dispatchSent(
        {name_, request.from, sizeOf(data), request.ticket.requestId(), true, error});
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
  std::string from;
  const std::size_t size = sizeOf(data);
  {
    const std::lock_guard lock(mutex_);
    const auto found = outstanding_.find(requestId);
    // Nobody waits any more, or somebody answers who was not asked.
    if (found == outstanding_.end() || found->second.ended || found->second.answerer != answerer) {
      return;
    }
    found->second.ended = true;
    found->second.outcome = {std::move(data), error};
    waiter = found->second.waiter;
    from = found->second.to;
    ++deliveries_;
  }
  if (dispatcher_ != nullptr) {
    dispatcher_->dispatchReceived({from, name_, size, requestId, true, error});
  }
  if (waiter != nullptr) {
    waiter->unpark();
  }
  deliveryEnds();
}

Mailbox::Outcome Mailbox::awaitReply(std::uint32_t requestId) {
  Outstanding request;
  if (std::string error = startWaiting(requestId, request); !error.empty()) {
    return {nullptr, std::move(error)};
  }
  Outcome outcome;
  if (takeEnded(requestId, outcome)) {
    return outcome;
  }
  if (const auto asked = request.asked.lock(); asked != nullptr && asked->waitsForCaller()) {
    return giveUp(requestId, "channel '" + request.to +
                                 "' answers only after the waiting thread has started it");
  }
  ServingThread& thread = servingThread();
  const WaitingScope waiting;
  for (;;) {
    if (takeEnded(requestId, outcome)) {
      return outcome;
    }
    if (thread.serving != nullptr && thread.serving->isShutDown()) {
      return giveUp(requestId,
                    "the service that waits for channel '" + request.to + "' was shut down");
    }
    if (thread.serving != nullptr && thread.serving->serveNext(thread.chain)) {
      continue;
    }
    if (!request.waiter->park(request.deadline)) {
      return giveUp(requestId, "channel '" + request.to + "' did not answer in time");
    }
  }
}

std::string Mailbox::expect(std::uint32_t requestId, const std::string& to,
                            const std::shared_ptr<Destination>& asked) {
  const auto now = Clock::now();
  const std::lock_guard lock(mutex_);
  if (closed_) {
    return "channel '" + name_ + "' is closed";
  }
  if (outstanding_.size() >= kManyOutstanding) {
    dropForgotten(now);
  }
  Outstanding request;
  request.to = to;
  request.asked = asked;
  request.answerer = asked != nullptr ? asked->instance() : 0;
  request.deadline = now + replyTimeout();
  if (!outstanding_.emplace(requestId, std::move(request)).second) {
    return "request " + std::to_string(requestId) + " of channel '" + name_ +
           "' is outstanding already";
  }
  return {};
}

/** Ends a request that could not be delivered; the waiter, if any, finds the same error. */
std::string Mailbox::endWith(std::uint32_t requestId, const std::string& error) {
  const std::lock_guard lock(mutex_);
  const auto found = outstanding_.find(requestId);
  if (requestId != 0 && found != outstanding_.end() && !found->second.ended) {
    found->second.ended = true;
    found->second.outcome.error = error;
  }
  return error;
}

std::string Mailbox::startWaiting(std::uint32_t requestId, Outstanding& copy) {
  const std::lock_guard lock(mutex_);
  const auto found = outstanding_.find(requestId);
  if (found == outstanding_.end()) {
    return "request " + std::to_string(requestId) + " of channel '" + name_ +
           "' is not outstanding";
  }
  if (found->second.waiter != nullptr) {
    return "another thread waits for request " + std::to_string(requestId) + " of channel '" +
           name_ + "'";
  }
  found->second.waiter = Parker::ofThisThread();
  copy = found->second;
  return {};
}

bool Mailbox::takeEnded(std::uint32_t requestId, Outcome& outcome) {
  const std::lock_guard lock(mutex_);
  const auto found = outstanding_.find(requestId);
  if (!found->second.ended) {
    return false;
  }
  outcome = std::move(found->second.outcome);
  outstanding_.erase(found);
  return true;
}

Mailbox::Outcome Mailbox::giveUp(std::uint32_t requestId, const std::string& error) {
  Outcome outcome;
  // The answer may have come at the last moment.
  if (takeEnded(requestId, outcome)) {
    return outcome;
  }
  const std::lock_guard lock(mutex_);
  outstanding_.erase(requestId);
  return {nullptr, error};
}

void Mailbox::dropForgotten(Clock::time_point now) {
  for (auto it = outstanding_.begin(); it != outstanding_.end();) {
    const bool forgotten = it->second.waiter == nullptr && it->second.deadline < now;
    it = forgotten ? outstanding_.erase(it) : std::next(it);
  }
}

void Mailbox::close() {
  std::shared_ptr<RequestReceiver> unused;  // may be the last owner: not released under the lock
  std::vector<std::shared_ptr<Parker>> waiters;
  {
    const std::lock_guard lock(mutex_);
    if (closed_) {
      return;
    }
    closed_ = true;
    served_.store(false, std::memory_order_release);
    unused = std::move(receiver_);
    for (auto& [id, request] : outstanding_) {
      if (!request.ended) {
        request.ended = true;
        request.outcome.error = "channel '" + name_ + "' was closed";
      }
      if (request.waiter != nullptr) {
        waiters.push_back(request.waiter);
      }
    }
  }
  for (const auto& waiter : waiters) {
    waiter->unpark();
  }
}

void Mailbox::deliveryEnds() {
  const std::lock_guard lock(mutex_);
  if (--deliveries_ == 0) {
    delivered_.notify_all();
  }
}

void Mailbox::waitForDeliveries() {
  std::unique_lock lock(mutex_);
  delivered_.wait(lock, [this] { return deliveries_ == 0; });
}

}  // namespace zerva
