#include "runtime/libClientUtils/Envelope.h"

#include <utility>

#include "runtime/libClientUtils/ExceptionText.h"

namespace zerva {

ReplyTicket::ReplyTicket(std::weak_ptr<ReplyReceiver> receiver, std::uint32_t requestId)
    : receiver_(std::move(receiver)), requestId_(requestId) {}

ReplyTicket::~ReplyTicket() {
  if (requestId_ == 0) {
    return;
  }
  if (exceptionOf([this] { fail("the request was dropped without an answer"); })) {
    // Who waits is told in any case; this is so short that it needs no memory.
    exceptionOf([this] { fail("no memory"); });
  }
}

ReplyTicket::ReplyTicket(ReplyTicket&& other) noexcept
    : receiver_(std::move(other.receiver_)),
      requestId_(std::exchange(other.requestId_, 0)),
      answerer_(other.answerer_) {}

ReplyTicket& ReplyTicket::operator=(ReplyTicket&& other) noexcept {
  receiver_.swap(other.receiver_);
  std::swap(requestId_, other.requestId_);
  std::swap(answerer_, other.answerer_);
  return *this;
}

const std::string& textOf(const SharedName& name) {
  static const auto* const none = new std::string;  // never destroyed
  return name != nullptr ? *name : *none;
}

void ReplyTicket::answer(Payload data) { send(std::move(data), {}); }

void ReplyTicket::fail(const std::string& error) { send(nullptr, error); }

void ReplyTicket::send(Payload data, const std::string& error) {
  const std::uint32_t requestId = std::exchange(requestId_, 0);
  if (requestId == 0) {
    return;
  }
  if (const auto receiver = receiver_.lock()) {
    try {
      receiver->receiveReply(requestId, answerer_, std::move(data), error);
    } catch (...) {
      // The answer did not get there, so it is still to be given.
      requestId_ = requestId;
      throw;
    }
  }
}

}  // namespace zerva
