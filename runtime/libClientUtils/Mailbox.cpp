#include "runtime/libClientUtils/Mailbox.h"

#include <utility>
#include <vector>

#include "framework/CCInterceptorDispatcher.h"
#include "framework/Logging.h"
#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/ReplyTimeout.h"
#include "runtime/libClientUtils/ServingThread.h"

namespace zerva {

namespace {

// Requests whose sender never asks for the reply are looked for when this many are outstanding.
constexpr std::size_t kManyOutstanding = 64;

std::size_t sizeOf(const Payload& data) { return data != nullptr ? data->size() : 0; }

std::uint64_t newNumber() {
  static std::atomic<std::uint64_t> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

}  // namespace

/** While it lives, a delivery to the mailbox is under way. Made under the lock. */
class Mailbox::Delivery {
 public:
  explicit Delivery(Mailbox& mailbox) : mailbox_(mailbox) { ++mailbox_.deliveries_; }
  ~Delivery() {
    const std::lock_guard lock(mailbox_.mutex_);
    if (--mailbox_.deliveries_ == 0) {
      mailbox_.delivered_.notify_all();
    }
  }
  Delivery(const Delivery&) = delete;
  Delivery& operator=(const Delivery&) = delete;

 private:
  Mailbox& mailbox_;
};

/** Sees to it that a request is not outstanding any more when its wait ends, however it ends. */
class Mailbox::Forgetting {
 public:
  Forgetting(Mailbox& mailbox, std::uint32_t requestId)
      : mailbox_(mailbox), requestId_(requestId) {}
  ~Forgetting() {
    const std::lock_guard lock(mailbox_.mutex_);
    mailbox_.outstanding_.erase(requestId_);
  }
  Forgetting(const Forgetting&) = delete;
  Forgetting& operator=(const Forgetting&) = delete;

 private:
  Mailbox& mailbox_;
  const std::uint32_t requestId_;
};

Mailbox::Mailbox(const std::string& name, CCInterceptorDispatcher* dispatcher)
    : name_(sharedName(name)), number_(newNumber()), dispatcher_(dispatcher) {}

Mailbox::~Mailbox() = default;

Mailbox::Serves Mailbox::serves(const Executable* object) const {
  const auto serving = receiver();
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
    served_.store(true, std::memory_order_release);
  }
  ChannelDirectory::instance().servedMayHaveChanged(name());
}

/** @returns whether an interceptor is to be told of what the channel does. */
bool Mailbox::isSeen() const { return dispatcher_ != nullptr && dispatcher_->hasInterceptors(); }

std::shared_ptr<RequestReceiver> Mailbox::receiver() const {
  const std::lock_guard lock(mutex_);
  return receiver_;
}

std::string Mailbox::send(const SharedName& to, const Callee& callee, Payload data,
                          std::uint32_t requestId) {
  if (requestId != 0) {
    if (std::string error = expect(requestId, to); !error.empty()) {
      return error;
    }
  } else if (const std::lock_guard lock(mutex_); closed_) {
    return "channel '" + name() + "' is closed";
  }
  const CallChain& served = servingThread().chain();
  Envelope envelope{name_,
                    to,
                    callee,
                    std::move(data),
                    requestId != 0 ? served.ofRequest() : served.ofMessage(),
                    {},
                    nullptr,
                    {},
                    nullptr};
  if (envelope.chain.length() > kMaximumChainLength) {
    return endWith(requestId, "more than " + std::to_string(kMaximumChainLength) +
                                  " requests wait for one another before channel '" + textOf(to) +
                                  "'");
  }
  if (isSeen()) {
    dispatcher_->dispatchSent({name(), textOf(to), sizeOf(envelope.data), requestId, false, {}});
  }
  return endWith(requestId, deliverTo(envelope, requestId));
}

/** @returns why nobody takes the message; empty when somebody did. */
std::string Mailbox::deliverTo(Envelope& envelope, std::uint32_t requestId) {
  // One that closes at this moment is not found again; a younger one of the name may be.
  while (const auto destination = ChannelDirectory::instance().find(envelope.to())) {
    if (requestId != 0) {
      envelope.ticket = ReplyTicket(weak_from_this(), requestId);
      envelope.ticket.answerAs(aimAt(requestId, destination));
    }
    if (destination->deliver(envelope)) {
      return {};
    }
    envelope.ticket.cancel();
    if (!envelope.refusal.empty()) {
      return envelope.refusal;
    }
  }
  return "nobody serves channel '" + envelope.to() + "'";
}

bool Mailbox::deliver(Envelope& envelope) {
  std::unique_lock lock(mutex_);
  const std::shared_ptr<RequestReceiver> taker = receiver_;
  if (taker == nullptr) {
    return false;
  }
  const Delivery delivery(*this);
  lock.unlock();
  // Told before the request is handed over, so that it is seen before its reply.
  if (envelope.expiry == nullptr && isSeen()) {
    dispatcher_->dispatchReceived(
        {envelope.from(), name(), sizeOf(envelope.data), envelope.ticket.requestId(), false, {}});
  }
  return taker->receive(envelope);
}

std::string Mailbox::server() const { return "here " + std::to_string(number_); }

bool Mailbox::waitsForCaller() const {
  const auto serving = receiver();
  return serving != nullptr && serving->waitsForCaller();
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
    Outstanding* request = awaited(requestId, answerer);
    // While a request is awaited the channel is there, and so is its dispatcher.
    if (request != nullptr && isSeen()) {
      tellReceived(lock, requestId, sizeOf(data), error);
      request = awaited(requestId, answerer);  // it may have been given up meanwhile
    }
    if (request == nullptr) {
      return;
    }
    request->end({std::move(data), error});
    waiter = request->waiter;
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
 * @returns, under the lock, the request that a reply is for; null when nobody waits any more, or
 *     when it is the reply to an earlier request with that id, or to nothing that was asked.
 */
Mailbox::Outstanding* Mailbox::awaited(std::uint32_t requestId, std::uint64_t answerer) {
  const auto found = outstanding_.find(requestId);
  const bool waitsForIt =
      found != outstanding_.end() && !found->second.ended && found->second.answerer == answerer;
  return waitsForIt ? &found->second : nullptr;
}

Mailbox::Outcome Mailbox::awaitReply(std::uint32_t requestId) {
  std::string error;
  std::shared_ptr<Destination> asked;
  std::shared_ptr<Input> input;
  Outstanding* const request = startWaiting(requestId, asked, input, error);
  if (request == nullptr) {
    return {nullptr, std::move(error)};
  }
  const Forgetting forgetting(*this, requestId);
  if (!request->ended && asked != nullptr && asked->waitsForCaller()) {
    error = "channel '" + textOf(request->to) +
            "' answers only after the waiting thread has started it";
  } else if (!request->ended) {
    asked.reset();
    error = waitFor(*request, input.get());
  }
  // One that ended at the last moment has ended.
  return request->ended ? std::move(request->outcome) : Outcome{nullptr, std::move(error)};
}

/**
 * Waits until a request has ended.
 *
 * @param input where its answer comes from; null when from this process.
 * @returns why nobody waits any longer when it has not.
 */
std::string Mailbox::waitFor(const Outstanding& request, Input* input) {
  ServingThread& thread = servingThread();
  Parker& parker = *request.waiter;
  const WaitingScope waiting;
  bool inTime = true;
  while (!request.ended) {
    if (thread.serving != nullptr && thread.serving->isShutDown()) {
      return "the service that waits for channel '" + textOf(request.to) + "' was shut down";
    }
    if (!inTime) {
      return "channel '" + textOf(request.to) + "' did not answer in time";
    }
    if (thread.serving == nullptr || !thread.serving->serveNext(thread.chain())) {
      inTime = parker.park(request.deadline, input);
    }
  }
  return {};
}

std::string Mailbox::expect(std::uint32_t requestId, const SharedName& to) {
  const auto now = Clock::now();
  const std::lock_guard lock(mutex_);
  if (closed_) {
    return "channel '" + name() + "' is closed";
  }
  if (outstanding_.size() >= kManyOutstanding) {
    dropForgotten(now);
  }
  const auto [place, isNew] = outstanding_.try_emplace(requestId);
  if (!isNew) {
    return "request " + std::to_string(requestId) + " of channel '" + name() +
           "' is outstanding already";
  }
  place->second.deadline = now + replyTimeout();
  place->second.to = to;
  return {};
}

/**
 * Notes who is asked.
 *
 * @returns what only the reply to this very request can know: its id may be used again before a
 *     late reply comes, which whoever is asked now may have been asked for, too.
 */
std::uint64_t Mailbox::aimAt(std::uint32_t requestId, const std::shared_ptr<Destination>& asked) {
  const std::lock_guard lock(mutex_);
  const std::uint64_t answerer = ++lastAnswerer_;
  const auto found = outstanding_.find(requestId);
  if (found != outstanding_.end()) {
    found->second.asked = asked;
    found->second.input = asked->input();
    found->second.answerer = answerer;
  }
  return answerer;
}

/** Ends a request that could not be delivered, if there is an error; the waiter finds the same. */
std::string Mailbox::endWith(std::uint32_t requestId, const std::string& error) {
  if (error.empty()) {
    return {};
  }
  std::shared_ptr<Parker> waiter;
  {
    const std::lock_guard lock(mutex_);
    const auto found = outstanding_.find(requestId);
    if (requestId != 0 && found != outstanding_.end() && !found->second.ended) {
      found->second.end({nullptr, error});
      waiter = found->second.waiter;
    }
  }
  // Another thread may wait for it already.
  if (waiter != nullptr) {
    waiter->unpark();
  }
  return error;
}

/**
 * @returns the request, which stays where it is until the calling thread forgets it; null when it
 *     cannot be waited for.
 * @param asked gets who was asked.
 * @param input gets where the answer comes from, when not from this process.
 * @param error gets why it cannot be waited for.
 */
Mailbox::Outstanding* Mailbox::startWaiting(std::uint32_t requestId,
                                            std::shared_ptr<Destination>& asked,
                                            std::shared_ptr<Input>& input, std::string& error) {
  const std::lock_guard lock(mutex_);
  const auto found = outstanding_.find(requestId);
  if (found == outstanding_.end()) {
    error = closed_ ? "channel '" + name() + "' is closed"
                    : "request " + std::to_string(requestId) + " of channel '" + name() +
                          "' is not outstanding";
    return nullptr;
  }
  if (found->second.waiter != nullptr) {
    error = "another thread waits for request " + std::to_string(requestId) + " of channel '" +
            name() + "'";
    return nullptr;
  }
  found->second.waiter = Parker::ofThisThread();
  asked = found->second.asked.lock();
  input = found->second.input.lock();
  return &found->second;
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
        request.end({nullptr, "channel '" + name() + "' was closed"});
      }
      if (request.waiter != nullptr) {
        waiters.push_back(request.waiter);
      }
    }
  }
  for (const auto& waiter : waiters) {
    waiter->unpark();
  }
  if (unused != nullptr) {
    ChannelDirectory::instance().servedMayHaveChanged(name());
  }
}

void Mailbox::waitForDeliveries() {
  std::unique_lock lock(mutex_);
  delivered_.wait(lock, [this] { return deliveries_ == 0; });
}

}  // namespace zerva
