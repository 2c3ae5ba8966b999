// How a mailbox sends a request or a message.

#include <utility>

#include "framework/CCInterceptorDispatcher.h"
#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/Mailbox.h"
#include "runtime/libClientUtils/ReplyTimeout.h"
#include "runtime/libClientUtils/ServingThread.h"

namespace zerva {

namespace {

// Requests whose sender never asks for the reply are looked for when this many are outstanding.
constexpr std::size_t kManyOutstanding = 64;

std::size_t sizeOf(const Payload& data) { return data != nullptr ? data->size() : 0; }

}  // namespace

/** A name that something is sent to, and who was found under it. */
struct Mailbox::Target {
  explicit Target(const SharedName& theName) : name(textOf(theName)), shared(&theName) { find(); }
  explicit Target(const std::string& theName) : name(theName) { find(); }

  void find() { found = ChannelDirectory::instance().find(name); }

  /** @returns the name for a message that needs it to get there; else null. */
  SharedName carried() const {
    if (found == nullptr || found->isHere()) return nullptr;
    return shared != nullptr ? *shared : sharedName(name);
  }

  const std::string& name;
  const SharedName* const shared = nullptr;  // null when nobody has it to be shared
  std::shared_ptr<Destination> found;
};

std::string Mailbox::send(const SharedName& to, const Callee& callee, Payload data,
                          std::uint32_t requestId) {
  Target target(to);
  return sendTo(target, callee, std::move(data), requestId);
}

std::string Mailbox::send(const std::string& to, Payload data) {
  Target target(to);
  return sendTo(target, nullptr, std::move(data), 0);
}

std::string Mailbox::sendTo(Target& target, const Callee& callee, Payload data,
                            std::uint32_t requestId) {
  const CallChain& served = servingThread().chain();
  Envelope envelope{name_,
                    target.carried(),
                    callee,
                    std::move(data),
                    requestId != 0 ? served.ofRequest() : served.ofMessage(),
                    {},
                    nullptr,
                    {},
                    nullptr};
  std::string error;
  if (requestId != 0) {
    error = expect(requestId, *target.shared, target.found, envelope.ticket);
    if (!error.empty()) {
      return error;
    }
  } else if (closed_) {
    return "channel '" + name() + "' is closed";
  }
  if (envelope.chain.length() > kMaximumChainLength) {
    error = "more than " + std::to_string(kMaximumChainLength) +
            " requests wait for one another before channel '" + target.name + "'";
  } else {
    if (isSeen()) {
      dispatcher_->dispatchSent({name(), target.name, sizeOf(envelope.data), requestId, false, {}});
    }
    error = deliverTo(target, envelope);
  }
  if (!error.empty()) {
    const std::uint64_t answerer = envelope.ticket.answerer();
    envelope.ticket.cancel();
    failUnsent(requestId, answerer, error);
  }
  return error;
}

/** @returns why nobody takes the message; empty when somebody did. */
std::string Mailbox::deliverTo(Target& target, Envelope& envelope) {
  while (target.found != nullptr) {
    if (target.found->deliver(envelope)) {
      return {};
    }
    if (!envelope.refusal.empty()) {
      return envelope.refusal;
    }
    // One that closes at this moment is not found again; a younger one of the name may be.
    target.find();
    envelope.receiver = target.carried();
    if (const std::uint32_t requestId = envelope.ticket.requestId(); requestId != 0) {
      envelope.ticket.cancel();
      envelope.ticket = aimAgain(requestId, target.found);
      // Given up meanwhile, and its sender told: it is no message for which nobody waits.
      if (envelope.ticket.requestId() == 0) return {};
    }
  }
  return "nobody serves channel '" + target.name + "'";
}

/**
 * Notes a request that is to be sent.
 *
 * @param asked who is asked; null when nobody is found.
 * @param ticket gets the obligation to answer.
 * @returns why it cannot be sent; empty when it can.
 */
std::string Mailbox::expect(std::uint32_t requestId, const SharedName& to,
                            const std::shared_ptr<Destination>& asked, ReplyTicket& ticket) {
  const auto now = Clock::now();
  const bool started = asked != nullptr && asked->isStarted();
  const std::lock_guard lock(mutex_);
  if (closed_) {
    return "channel '" + name() + "' is closed";
  }
  if (outstanding_.size() >= kManyOutstanding) {
    dropForgotten(now);
  }
  const auto [request, isNew] = place(requestId);
  if (!isNew) {
    return "request " + std::to_string(requestId) + " of channel '" + name() +
           "' is outstanding already";
  }
  request->second.deadline = now + replyTimeout();
  request->second.to = to;
  ticket = aimAt(*request, asked, started);
  return {};
}

/** Makes room for a request, under the lock. @returns where, and whether it is not there yet. */
std::pair<Mailbox::Requests::iterator, bool> Mailbox::place(std::uint32_t requestId) {
  if (spare_.empty()) {
    return outstanding_.try_emplace(requestId);
  }
  spare_.key() = requestId;
  auto placed = outstanding_.insert(std::move(spare_));
  spare_ = std::move(placed.node);
  return {placed.position, placed.inserted};
}

/**
 * Notes, under the lock, who is asked.
 *
 * @returns the obligation to answer. Only the reply to this very request can know what it is
 *     answered as: the id may be used again before a late reply comes, which whoever is asked now
 *     may have been asked for, too.
 */
ReplyTicket Mailbox::aimAt(Requests::value_type& request, const std::shared_ptr<Destination>& asked,
                           bool isStarted) {
  if (isStarted) {
    request.second.asked.reset();
  } else {
    request.second.asked = asked;
  }
  request.second.input = asked != nullptr ? asked->input() : nullptr;
  request.second.answerer = ++lastAnswerer_;
  ReplyTicket ticket(weak_from_this(), request.first);
  ticket.answerAs(request.second.answerer);
  return ticket;
}

/** Notes that another one is asked, since the one before did not take the request. */
ReplyTicket Mailbox::aimAgain(std::uint32_t requestId, const std::shared_ptr<Destination>& asked) {
  const bool started = asked != nullptr && asked->isStarted();
  const std::lock_guard lock(mutex_);
  const auto found = outstanding_.find(requestId);
  return found != outstanding_.end() ? aimAt(*found, asked, started) : ReplyTicket();
}

/** Ends a request that could not be delivered: who waits for it finds out why. */
void Mailbox::failUnsent(std::uint32_t requestId, std::uint64_t answerer,
                         const std::string& error) {
  std::shared_ptr<Parker> waiter;
  {
    const std::lock_guard lock(mutex_);
    const auto found = awaited(requestId, answerer);
    if (found != outstanding_.end()) {
      waiter = end(found, {nullptr, error});
    }
  }
  // Another thread may wait for it already.
  if (waiter != nullptr) {
    waiter->unpark();
  }
}

}  // namespace zerva
