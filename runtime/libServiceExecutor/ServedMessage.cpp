// How an executor serves a message that it has taken out of its queue.

#include <new>
#include <optional>
#include <utility>

#include "FrameworkContext.h"
#include "framework/DecodeException.h"
#include "framework/Executable.h"
#include "framework/InvokeInterceptorDispatcher.h"
#include "framework/ProtocolAdapter.h"
#include "framework/TargetInvoker.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/Lookups.h"
#include "runtime/libClientUtils/MessageState.h"
#include "runtime/libClientUtils/Texts.h"
#include "runtime/libServiceExecutor/ExecutorCore.h"
#include "runtime/libServiceExecutor/ExecutorLog.h"
#include "runtime/libServiceExecutor/TakenMessage.h"

namespace zerva {

namespace {

const Payload& nothing() {
  // Never destroyed, since threads may serve while the process ends.
  static const auto* const empty = new Payload(std::make_shared<const std::string>());
  return *empty;
}

}  // namespace

void ExecutorCore::serve(Taken& taken, Executable& service) {
  Envelope& envelope = taken.envelope();
  const ServingScope scope(this, envelope.chain);
  const auto error = exceptionOf([&] {
    if (envelope.expiry != nullptr) {
      fire(*envelope.expiry, service);
    } else {
      serveMessage(taken, service);
    }
  });
  if (error) {
    // The service is not to blame: an interceptor, or no memory for the answer. The envelope
    // answers by itself when it goes.
    countFailure();
    EXECUTOR_LOG(2, "channel '%s': a message was lost: %s", channelName_.c_str(), error->c_str());
  }
}

void ExecutorCore::serveMessage(Taken& taken, Executable& service) {
  Envelope& envelope = taken.envelope();
  const bool seen = settings_.dispatcher != nullptr && settings_.dispatcher->hasInterceptors();
  const auto start = seen ? Clock::now() : Clock::time_point();
  Payload answer;
  const bool isCall = envelope.callee != nullptr && !envelope.callee->interface.empty();
  std::string method;
  const std::string error = isCall ? call(service, taken, seen ? &method : nullptr, answer)
                                   : handOver(service, taken, answer);
  const auto duration = seen ? Clock::now() - start : Clock::duration();
  if (!error.empty()) {
    countFailure();
    EXECUTOR_LOG(2, "%s: a message from channel '%s' failed: %s", description().c_str(),
                 envelope.from().c_str(), error.c_str());
  }
  // Reported first, so that whoever gets the answer finds the request counted.
  if (seen) {
    settings_.dispatcher->dispatch({isCall ? envelope.callee->interface : settings_.interfaces,
                                    method, envelope.from(), channelName_, duration, error});
  }
  if (envelope.ticket.requestId() == 0) return;
  if (answer == nullptr) answer = nothing();
  mailbox_->answer(envelope, std::move(answer), error);
}

/**
 * Makes a call of an interface method.
 *
 * @param method gets its name, for those who see the call; may be null.
 * @returns why it failed, or "".
 */
std::string ExecutorCore::call(Executable& service, const Taken& taken, std::string* method,
                               Payload& answer) {
  const Envelope& envelope = taken.envelope();
  KnownInvoker with = taken.known();
  if (with.invoker == nullptr) {
    if (std::string error = lookUp(service, envelope.callee, with); !error.empty()) return error;
  }
  std::shared_ptr<std::string> reply = newText();
  std::optional<std::string> refusal;
  const auto error = exceptionOf([&] {
    try {
      if (method != nullptr) {
        *method = with.adapter->methodOf(*envelope.data);
      }
      if (with.targeted != nullptr) {
        with.targeted->invokeTarget(with.target, *with.adapter, *envelope.data, *reply);
      } else {
        with.invoker->invoke(service, *with.adapter, *envelope.data, *reply);
      }
    } catch (const DecodeException& exception) {
      refusal = exception.what();
    }
  });
  if (error) {
    return "the service threw: " + *error;
  }
  if (refusal && refusal->empty()) {
    // Also a refusal without a text is one.
    return "the call was refused without a reason";
  }
  answer = std::move(reply);
  return refusal.value_or(std::string());
}

/**
 * Finds with what the calls of an interface over a protocol are made, and keeps it for the next.
 *
 * @returns why there is nothing, or "".
 */
std::string ExecutorCore::lookUp(Executable& service, const Callee& callee, KnownInvoker& found) {
  // The context may write into what it is given.
  std::string interface = callee->interface;
  std::string protocol = callee->protocol;
  const std::uint32_t age = Lookups::age();
  if (const auto error = exceptionOf([&] {
        found.adapter = settings_.context->findProtocolAdapter(protocol);
        found.invoker = settings_.context->findInvoker(interface, protocol);
        found.targeted = dynamic_cast<TargetInvoker*>(found.invoker);
        if (found.targeted != nullptr) found.target = found.targeted->targetOf(service);
        if (found.target == nullptr) found.targeted = nullptr;
      })) {
    return "looking up its invoker failed: " + *error;
  }
  if (found.adapter == nullptr) {
    return "protocol '" + protocol + "' is not known there";
  }
  if (found.invoker == nullptr) {
    return "there is no invoker for interface '" + interface + "' and protocol '" + protocol + "'";
  }
  keep(service, callee, age, found);
  return {};
}

void ExecutorCore::keep(const Executable& service, const Callee& callee, std::uint32_t age,
                        const KnownInvoker& found) {
  const std::lock_guard lock(mutex_);
  // One that is being made may not come to be the executor's: then another one is made.
  if (service_ != &service) return;
  try {
    knownInvokers_.add(callee, age, found);
  } catch (const std::bad_alloc&) {
    // Then it is looked up again.
  }
}

/**
 * Hands the service a message that is no call. The message's data are not the envelope's any more.
 *
 * @returns why it failed, or "".
 */
std::string ExecutorCore::handOver(Executable& service, Taken& taken, Payload& answer) {
  Envelope& envelope = taken.envelope();
  Handed& used = taken.handed();
  CommsChannelDataContainerMessage& message = used.message;
  CommsChannelDataContainerMessage& reply = used.reply;
  auto& handed = message.state();
  // Lent, since to share it would be counted.
  handed.channel.swap(envelope.sender);
  handed.data = std::move(envelope.data);
  handed.requestId = static_cast<long>(envelope.ticket.requestId());
  auto error = exceptionOf([&] { service.messageReceived(message, reply); });
  handed.channel.swap(envelope.sender);
  if (error) {
    // Also a service that throws an empty text has failed.
    return error->empty() ? "an exception without a text" : *std::move(error);
  }
  answer = std::move(reply.state().data);
  handed.data.reset();
  reply.state().clear();
  taken.handedIsEmpty();
  return {};
}

void ExecutorCore::fire(Expiry& expiry, const Executable& service) {
  // Two channels may have one name; the timer is then told apart by its owner.
  if (expiry.owner() != &service) {
    EXECUTOR_LOG(2, "%s: got an expiry of another owner's timer", description().c_str());
    return;
  }
  if (const auto error = exceptionOf([&] { expiry.fire(); })) {
    countFailure();
    EXECUTOR_LOG(2, "%s: timerExpired failed: %s", description().c_str(), error->c_str());
  }
}

}  // namespace zerva
