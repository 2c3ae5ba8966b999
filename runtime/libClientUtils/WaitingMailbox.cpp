// How a mailbox waits for the replies to its requests.

#include <utility>

#include "runtime/libClientUtils/MailboxWait.h"
#include "runtime/libClientUtils/ServingThread.h"

namespace zerva {

Mailbox::Outcome Mailbox::awaitReply(std::uint32_t requestId) {
  Wait wait(*this, requestId);
  std::string error = startWaiting(wait);
  return outcomeOf(wait, std::move(error));
}

Mailbox::Outcome Mailbox::call(const SharedName& to, const Callee& callee, Payload data,
                               std::uint32_t requestId) {
  Wait wait(*this, requestId);
  std::string error = sendTo(to, callee, std::move(data), requestId, &wait);
  return outcomeOf(wait, std::move(error));
}

/** @param error why nobody waits; empty when somebody does. */
Mailbox::Outcome Mailbox::outcomeOf(Wait& wait, std::string error) {
  if (error.empty()) error = waitFor(wait);
  // One that ended at the last moment has ended.
  return wait.ended ? std::move(wait.outcome) : Outcome{nullptr, std::move(error)};
}

/** Waits until a request has ended. @returns why nobody waits any longer when it has not. */
std::string Mailbox::waitFor(Wait& wait) {
  if (wait.ended) {
    return {};
  }
  if (const auto asked = std::move(wait.asked); asked != nullptr && asked->waitsForCaller()) {
    return "channel '" + channelAsked(wait.requestId) +
           "' answers only after the waiting thread has started it";
  }
  ServingThread& thread = servingThread();
  Parker& parker = *Parker::ofThisThread();
  const WaitingScope waiting;
  bool inTime = true;
  while (!wait.ended) {
    if (thread.serving != nullptr && thread.serving->isShutDown()) {
      return "the service that waits for channel '" + channelAsked(wait.requestId) +
             "' was shut down";
    }
    if (!inTime) {
      return "channel '" + channelAsked(wait.requestId) + "' did not answer in time";
    }
    if (thread.serving == nullptr || !thread.serving->serveNext(thread.chain())) {
      inTime = parker.park(wait.deadline, wait.input.get());
    }
  }
  return {};
}

/** @returns why a request cannot be waited for; empty when it can, or has ended already. */
std::string Mailbox::startWaiting(Wait& wait) {
  const std::lock_guard lock(mutex_);
  Outstanding* const request = outstanding_.find(wait.requestId);
  if (request == nullptr) {
    return closed_ ? "channel '" + name() + "' is closed"
                   : "request " + std::to_string(wait.requestId) + " of channel '" + name() +
                         "' is not outstanding";
  }
  if (request->wait != nullptr) {
    return "another thread waits for request " + std::to_string(wait.requestId) + " of channel '" +
           name() + "'";
  }
  if (request->outcome) {
    wait.outcome = *std::move(request->outcome);
    wait.ended = true;
    outstanding_.remove(wait.requestId);
    return {};
  }
  wait.asked = request->asked.lock();
  wait.input = request->input.lock();
  note(wait, *request);
  return {};
}

/** Notes, under the lock, that a thread waits for a request. */
void Mailbox::note(Wait& wait, Outstanding& request) {
  wait.deadline = request.deadline;
  wait.noted = true;
  request.wait = &wait;
}

/** @returns the channel that a request which has not ended was sent to. */
std::string Mailbox::channelAsked(std::uint32_t requestId) const {
  const std::lock_guard lock(mutex_);
  const Outstanding* const found = outstanding_.find(requestId);
  return found != nullptr ? textOf(found->to) : std::string();
}

}  // namespace zerva
