// How a mailbox sends a request or a message.

#include <utility>

#include "framework/CCInterceptorDispatcher.h"
#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/MailboxWait.h"
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
  return sendTo(to, callee, std::move(data), requestId, nullptr);
}

std::string Mailbox::send(const std::string& to, Payload data) {
  Target target(to);
  return sendTo(target, nullptr, std::move(data), 0, nullptr);
}

std::string Mailbox::sendTo(const SharedName& to, const Callee& callee, Payload data,
                            std::uint32_t requestId, Wait* wait) {
  Target target(to);
  return sendTo(target, callee, std::move(data), requestId, wait);
}

/**
 * Sends a request or a message.
 *
 * @param wait of the calling thread, which waits for the reply next; null when it may do so later.
 * @returns why it failed, or "".
 */
std::string Mailbox::sendTo(Target& target, const Callee& callee, Payload data,
                            std::uint32_t requestId, Wait* wait) {
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
    error = expect(requestId, target, wait, envelope.ticket);
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
    error = deliverTo(target, envelope, wait);
  }
  if (!error.empty()) {
    const std::uint64_t answerer = envelope.ticket.answerer();
    envelope.ticket.cancel();
    failUnsent(requestId, answerer, error);
  }
  return error;
}

/** @returns why nobody takes the message; empty when somebody did. */
std::string Mailbox::deliverTo(Target& target, Envelope& envelope, Wait* wait) {
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
    if (envelope.ticket.requestId() != 0) {
      envelope.ticket = aimAgain(envelope.ticket, target.found, wait);
      // Given up meanwhile, and its sender told: it is no message for which nobody waits.
      if (envelope.ticket.requestId() == 0) return {};
    }
  }
  return "nobody serves channel '" + target.name + "'";
}

/**
 * Notes a request that is to be sent.
 *
 * @param wait as in `sendTo`; the request's from here on.
 * @param ticket gets the obligation to answer.
 * @returns why it cannot be sent; empty when it can.
 */
std::string Mailbox::expect(std::uint32_t requestId, const Target& target, Wait* wait,
                            ReplyTicket& ticket) {
  const std::shared_ptr<Destination>& asked = target.found;
  const SharedName& to = *target.shared;
  const auto now = Clock::now();
  const bool started = asked != nullptr && asked->isStarted();
  const std::lock_guard lock(mutex_);
  if (closed_) {
    return "channel '" + name() + "' is closed";
  }
  if (outstanding_.size() >= kManyOutstanding) {
    dropForgotten(now);
  }
  const auto [request, isNew] = outstanding_.place(requestId);
  if (!isNew) {
    return "request " + std::to_string(requestId) + " of channel '" + name() +
           "' is outstanding already";
  }
  request->deadline = now + replyTimeout();
  // The same one as before when the same proxy asks, and then its users need not be counted.
  if (request->to != to) request->to = to;
  ticket = aimAt(requestId, *request, asked, started, wait);
  if (wait != nullptr) note(*wait, *request);
  return {};
}

/**
 * Notes, under the lock, who is asked.
 *
 * @returns the obligation to answer. Only the reply to this very request can know what it is
 *     answered as: the id may be used again before a late reply comes, which whoever is asked now
 *     may have been asked for, too.
 */
ReplyTicket Mailbox::aimAt(std::uint32_t requestId, Outstanding& request,
                           const std::shared_ptr<Destination>& asked, bool isStarted, Wait* wait) {
  std::shared_ptr<Input> input = asked != nullptr ? asked->input() : nullptr;
  if (wait != nullptr) {
    wait->asked = isStarted ? nullptr : asked;
    wait->input = std::move(input);
    request.asked.reset();
    request.input.reset();
  } else {
    request.asked = isStarted ? nullptr : asked;
    request.input = input;
  }
  request.answerer = ++lastAnswerer_;
  ReplyTicket ticket(weak_from_this(), requestId);
  ticket.answerAs(request.answerer);
  return ticket;
}

/**
 * Notes that another one is asked, since the one before did not take the request.
 *
 * @param before the obligation of that one, which has none any more.
 * @returns that of who is asked now; none when nobody waits any more.
 */
ReplyTicket Mailbox::aimAgain(ReplyTicket& before, const std::shared_ptr<Destination>& asked,
                              Wait* wait) {
  const std::uint32_t requestId = before.requestId();
  before.cancel();
  if (wait != nullptr) {
    // Not under the lock: it may be the last one that keeps them.
    wait->asked.reset();
    wait->input.reset();
  }
  const bool started = asked != nullptr && asked->isStarted();
  const std::lock_guard lock(mutex_);
  Outstanding* const found = awaited(requestId, before.answerer());
  return found != nullptr ? aimAt(requestId, *found, asked, started, wait) : ReplyTicket();
}

/** Ends a request that could not be delivered: who waits for it finds out why. */
void Mailbox::failUnsent(std::uint32_t requestId, std::uint64_t answerer,
                         const std::string& error) {
  std::shared_ptr<Parker> waiter;
  {
    const std::lock_guard lock(mutex_);
    if (Outstanding* const request = awaited(requestId, answerer)) {
      waiter = end(*request, {nullptr, error});
      if (waiter != nullptr) outstanding_.remove(requestId);
    }
  }
  // Another thread may wait for it already.
  if (waiter != nullptr) {
    waiter->unpark();
  }
}

}  // namespace zerva
