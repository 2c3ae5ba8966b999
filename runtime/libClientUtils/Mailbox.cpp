#include "runtime/libClientUtils/Mailbox.h"

#include <new>
#include <utility>

#include "framework/CCInterceptorDispatcher.h"
#include "framework/Logging.h"
#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/MailboxWait.h"
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
    Outstanding* request = awaited(requestId, answerer);
    // While a request is awaited the channel is there, and so is its dispatcher.
    if (request != nullptr && isSeen()) {
      tellReceived(lock, requestId, sizeOf(data), error);
      request = awaited(requestId, answerer);  // it may have been given up meanwhile
    }
    if (request == nullptr) {
      return;
    }
    waiter = end(*request, {std::move(data), error});
    if (waiter != nullptr) outstanding_.remove(requestId);
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
    const SharedName from = outstanding_.find(requestId)->to;
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
Mailbox::Outstanding* Mailbox::awaited(std::uint32_t requestId, std::uint64_t answerer) {
  Outstanding* const found = outstanding_.find(requestId);
  const bool waitsForIt = found != nullptr && !found->outcome && found->answerer == answerer;
  return waitsForIt ? found : nullptr;
}

/**
 * Ends a request that has not ended yet, under the lock.
 *
 * @returns who waits, to be unparked, and the request is over; null when nobody waits yet: then it
 *     is kept until somebody does.
 */
std::shared_ptr<Parker> Mailbox::end(Outstanding& request, Outcome how) {
  Wait* const wait = std::exchange(request.wait, nullptr);
  if (wait == nullptr) {
    request.outcome = std::move(how);
    return nullptr;
  }
  std::shared_ptr<Parker> waiter = std::move(wait->parker);
  wait->outcome = std::move(how);
  wait->ended.store(true, std::memory_order_release);  // from here on it may be gone
  return waiter;
}

void Mailbox::dropForgotten(Clock::time_point now) {
  outstanding_.removeIf([now](const Outstanding& request) {
    return request.wait == nullptr && request.deadline < now;
  });
}

void Mailbox::close() {
  bool wasServed = false;
  {
    const std::lock_guard lock(mutex_);
    if (closed_) {
      return;
    }
    closed_ = true;
    wasServed = served_.exchange(false);
    outstanding_.removeIf([this](Outstanding& request) {
      if (request.outcome) return false;
      std::string cause;
      try {
        cause = "channel '" + name() + "' was closed";
      } catch (const std::bad_alloc&) {
        // Who waits is told in any case; this is so short that it needs no memory.
        cause = "closed";
      }
      const auto waiter = end(request, {nullptr, std::move(cause)});
      // Under the lock, so that no memory is needed to remember it.
      if (waiter != nullptr) waiter->unpark();
      return waiter != nullptr;
    });
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
