#include "runtime/libClientUtils/bus/Peer.h"

#include <algorithm>
#include <asio/post.hpp>
#include <chrono>
#include <stdexcept>
#include <utility>
#include <variant>

#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/ServingThread.h"
#include "runtime/libClientUtils/bus/BusId.h"
#include "runtime/libClientUtils/bus/BusLog.h"

namespace zerva {

namespace {

// The connection that crossed this side's own is on its way already.
constexpr std::chrono::seconds kCrossedPatience{5};

// Failures still find room when nothing else does.
constexpr std::size_t kRoomForFailures = std::size_t{1024} * 1024;
constexpr std::size_t kLongestFailure = std::size_t{64} * 1024;

std::size_t sizeOf(const Payload& data) { return data != nullptr ? data->size() : 0; }

/** @returns what a message calls; nothing when it is no call. */
const CalledIn& calleeOf(const Envelope& envelope) {
  static const auto* const none = new CalledIn;  // never destroyed: threads may outlive main
  return envelope.callee != nullptr ? *envelope.callee : *none;
}

/** @returns whether a frame that begins like this is one that the other side takes. */
bool fits(const std::string& head, std::size_t data) {
  return head.size() - sizeof(std::uint32_t) + data <= kMaximumFrame;
}

/** @returns the data of a frame, which are not copied when they were put apart. */
Payload dataOf(std::string_view inFrame, Payload apart) {
  return apart != nullptr ? std::move(apart) : std::make_shared<const std::string>(inFrame);
}

std::string tooLong(const char* what, std::size_t size) {
  return std::string(what) + " of " + std::to_string(size) +
         " bytes is too long for another process: with names it may have " +
         std::to_string(kMaximumFrame);
}

/** @returns what is wrong with a frame that is not to be taken. */
std::string wrongIn(const Frame& frame) {
  const auto* const malformed = std::get_if<MalformedFrame>(&frame);
  return malformed != nullptr ? "it sent " + malformed->why
                              : "it sent a frame that has no place there";
}

}  // namespace

Peer::Peer(std::string id, std::shared_ptr<const BusShared> bus, Ended ended)
    : id_(std::move(id)),
      bus_(std::move(bus)),
      ended_(std::move(ended)),
      patience_(*bus_->context) {}

Peer::~Peer() = default;

void Peer::begin(std::shared_ptr<Connection> connection) {
  try {
    awaitGreeting(std::move(connection));
    connection_->sendGreeting(encodeHead(HelloFrame{kWireVersion, bus_->ownId}));
    // From here on this is the bus thread's only.
    connection_->start();
  } catch (...) {
    connection_->close();
    throw;
  }
}

bool Peer::deliver(Envelope& envelope) {
  const CalledIn& callee = calleeOf(envelope);
  const std::size_t longest =
      std::max({envelope.from().size(), callee.interface.size(), callee.protocol.size()});
  if (longest > kMaximumName) {
    envelope.refusal = "the name of the sending channel, the interface or the protocol has " +
                       std::to_string(longest) + " bytes, too many for another process";
    return false;
  }
  const MessageFrame message{
      envelope.chain.id(), envelope.chain.links(), envelope.from(), envelope.to(),
      envelope.data != nullptr ? std::string_view(*envelope.data) : std::string_view()};
  if (envelope.ticket.requestId() != 0) {
    return sendRequest(envelope, message);
  }
  std::string head = encodeHead(message);
  if (!fits(head, message.data.size())) {
    envelope.refusal = tooLong("a message", message.data.size());
    return false;
  }
  return settle(envelope, outgoing_.send(std::move(head), envelope.data, kMaximumQueued));
}

bool Peer::sendRequest(Envelope& envelope, const MessageFrame& message) {
  const std::uint32_t requestId = envelope.ticket.requestId();
  // Kept before it is sent, since the reply may be there before this thread goes on.
  const std::uint32_t wireId = asked_.add(envelope.ticket);
  if (wireId == 0) {
    return false;
  }
  const CalledIn& callee = calleeOf(envelope);
  std::string head =
      encodeHead(RequestFrame{wireId, requestId, callee.interface, callee.protocol, message});
  const bool fitting = fits(head, message.data.size());
  const auto result = fitting ? outgoing_.send(std::move(head), envelope.data, kMaximumQueued)
                              : Outgoing::Result::Full;
  if (result == Outgoing::Result::Taken) {
    return true;
  }
  envelope.ticket = asked_.take(wireId);
  if (envelope.ticket.requestId() == 0) {
    return true;  // it failed meanwhile with all others, and its sender was told
  }
  if (!fitting) {
    envelope.refusal = tooLong("a request", message.data.size());
    return false;
  }
  return settle(envelope, result);
}

bool Peer::settle(Envelope& envelope, Outgoing::Result result) {
  if (result == Outgoing::Result::Full) {
    envelope.refusal = describeProcess(id_) +
                       " does not read what is sent to it: " + std::to_string(kMaximumQueued) +
                       " bytes wait for it already";
  }
  return result == Outgoing::Result::Taken;
}

void Peer::receiveReply(std::uint32_t /*requestId*/, std::uint64_t answerer, Payload data,
                        const std::string& error) {
  const auto wireId = static_cast<std::uint32_t>(answerer);
  if (!error.empty()) {
    sendFailure(wireId, error);
    return;
  }
  const std::size_t size = sizeOf(data);
  const std::string_view view = size > 0 ? std::string_view(*data) : std::string_view();
  std::string head = encodeHead(ReplyFrame{wireId, view});
  if (!fits(head, size)) {
    sendFailure(wireId, tooLong("a reply", size));
  } else if (outgoing_.send(std::move(head), std::move(data), kMaximumQueued) ==
             Outgoing::Result::Full) {
    sendFailure(wireId, "there is no room for the reply: too much waits to be read");
  }
}

void Peer::sendFailure(std::uint32_t wireId, const std::string& error) {
  const auto text = std::make_shared<const std::string>(error.substr(0, kLongestFailure));
  if (outgoing_.send(encodeHead(FailureFrame{wireId, *text}), text,
                     kMaximumQueued + kRoomForFailures) == Outgoing::Result::Full) {
    asio::post(*bus_->context, [self = shared_from_this()] {
      self->connectionEnded("it does not read what is sent to it");
    });
  }
}

Peer::Offer Peer::considers() const {
  switch (state_) {
    case State::Connecting:
      // Both have connected at once: the connection of the one with the smaller id is used.
      return bus_->ownId < id_ ? Offer::Cross : Offer::Adopt;
    case State::Crossed:
      return Offer::Adopt;
    case State::Open:
      // Another one is wanted only by a process that has given the first up. Else it is the own
      // crossing of the one that is used.
      return isHeld() ? Offer::Cross : Offer::Replace;
    case State::Ended:
      break;
  }
  return Offer::Replace;
}

bool Peer::isHeld() const {
  return !outgoing_.isEnded() && (connection_ == nullptr || !connection_->hungUp());
}

void Peer::adopt(std::shared_ptr<Connection> connection) {
  if (connection_ != nullptr) {
    connection_->close();
  }
  connection->sendGreeting(encodeHead(WelcomeFrame{kWireVersion, bus_->ownId}));
  open(std::move(connection));
}

void Peer::end(const std::string& cause) { failAll(giveUp(), cause); }

void Peer::waitForReader() {
  if (connection_ != nullptr) connection_->waitForReader();
}

void Peer::failAll(std::vector<ReplyTicket> tickets, const std::string& cause) {
  for (ReplyTicket& ticket : tickets) {
    ticket.fail(cause);
  }
}

/** Ends the stream. @returns what is asked still, which the caller lets fail. */
std::vector<ReplyTicket> Peer::giveUp() {
  if (state_ == State::Ended) {
    return {};
  }
  state_ = State::Ended;
  const auto self = shared_from_this();
  patience_.cancel();
  if (connection_ != nullptr) {
    connection_->close();
  }
  // Known to be over before anybody finds out by trying, who would begin another stream at once.
  ended_(self, otherVersion_);
  outgoing_.end();
  return asked_.end();
}

void Peer::awaitGreeting(std::shared_ptr<Connection> connection) {
  connection_ = std::move(connection);
  // It knows this peer, and this peer it, until it is closed.
  const auto self = shared_from_this();
  connection_->setHandler(
      {[self](std::string_view body, const Payload&) { self->takeGreeting(body); },
       [self](const std::string& why) { self->connectionEnded(why); },
       {}},
      kMaximumGreeting);
}

void Peer::open(std::shared_ptr<Connection> connection) {
  connection_ = std::move(connection);
  const auto self = shared_from_this();
  connection_->setHandler({[self, from = connection_](std::string_view body, Payload data) {
                             self->takeFrame(body, std::move(data), from);
                           },
                           [self](const std::string& why) { self->connectionEnded(why); },
                           [self] { self->outgoing_.flush(); }},
                          kMaximumFrame);
  state_ = State::Open;
  patience_.cancel();
  outgoing_.open(connection_);
  connection_->share();
}

void Peer::connectionEnded(const std::string& why) {
  if (state_ == State::Ended) {
    return;
  }
  if (why.empty()) {
    // Counted when nothing can be asked any more: others ask until then.
    std::vector<ReplyTicket> unanswered = giveUp();
    // Who asked is told, and may have nobody to tell.
    if (!unanswered.empty()) {
      BUS_LOG(3, "%s ended before it answered what was asked of it: %zu in all",
              describeProcess(id_).c_str(), unanswered.size());
    }
    failAll(std::move(unanswered), describeProcess(id_) + " ended before it answered");
    return;
  }
  BUS_LOG(3, "the connection to %s is ended: %s", describeProcess(id_).c_str(), why.c_str());
  end("the connection to " + describeProcess(id_) + " was ended: " + why);
}

void Peer::takeGreeting(std::string_view body) {
  const Frame frame = decodeFrame(body);
  if (const auto* const welcome = std::get_if<WelcomeFrame>(&frame)) {
    take(*welcome);
  } else if (const auto* const crossed = std::get_if<CrossedFrame>(&frame)) {
    take(*crossed);
  } else {
    connectionEnded(wrongIn(frame));
  }
}

void Peer::take(const WelcomeFrame& frame) {
  if (frame.version != kWireVersion) {
    otherVersion_ = true;
    connectionEnded("it speaks version " + std::to_string(frame.version) + " of the bus, not " +
                    std::to_string(kWireVersion));
  } else if (frame.id != id_) {
    connectionEnded("it is somebody else");
  } else {
    open(connection_);
  }
}

void Peer::take(const CrossedFrame& /*frame*/) {
  state_ = State::Crossed;
  connection_->close();
  connection_.reset();
  patience_.expires_after(kCrossedPatience);
  patience_.async_wait([self = shared_from_this()](asio::error_code error) {
    if (!error && self->state_ == State::Crossed) {
      self->connectionEnded("it did not connect");
    }
  });
}

/** On the thread that reads, which is any; what it serves itself has nothing to do with this. */
void Peer::takeFrame(std::string_view body, Payload data,
                     const std::shared_ptr<Connection>& connection) {
  const ForOthersScope forOthers;
  const Frame frame = decodeFrame(body);
  if (const auto* const request = std::get_if<RequestFrame>(&frame)) {
    take(*request, std::move(data), connection);
  } else if (const auto* const reply = std::get_if<ReplyFrame>(&frame)) {
    take(*reply, std::move(data));
  } else if (const auto* const message = std::get_if<MessageFrame>(&frame)) {
    take(*message, std::move(data), connection);
  } else if (const auto* const failure = std::get_if<FailureFrame>(&frame)) {
    take(*failure);
  } else {
    throw std::runtime_error(wrongIn(frame));
  }
}

void Peer::take(const MessageFrame& frame, Payload data,
                const std::shared_ptr<Connection>& connection) {
  Envelope envelope{named(lastFrom_, frame.from),
                    named(lastTo_, frame.to),
                    {},
                    dataOf(frame.data, std::move(data)),
                    CallChain::ofOtherProcess(frame.chain, frame.links),
                    {},
                    nullptr,
                    {},
                    connection};
  takeEnvelope(envelope);
}

/** @returns a name that a message carries; mostly the same as the last one of this peer did. */
const SharedName& Peer::named(SharedName& last, std::string_view name) {
  if (last == nullptr || *last != name) last = sharedName(name);
  return last;
}

/** @returns what a request calls; mostly the same as the last one of this peer did. */
Callee Peer::calleeIn(const RequestFrame& frame) {
  if (lastCallee_ == nullptr || lastCallee_->interface != frame.interface ||
      lastCallee_->protocol != frame.protocol) {
    lastCallee_ = std::make_shared<const CalledIn>(
        CalledIn{std::string(frame.interface), std::string(frame.protocol)});
  }
  return lastCallee_;
}

void Peer::take(const RequestFrame& frame, Payload data,
                const std::shared_ptr<Connection>& connection) {
  const MessageFrame& message = frame.message;
  Envelope envelope{named(lastFrom_, message.from),
                    named(lastTo_, message.to),
                    calleeIn(frame),
                    dataOf(message.data, std::move(data)),
                    CallChain::ofOtherProcess(message.chain, message.links),
                    ReplyTicket(weak_from_this(), frame.requestId),
                    nullptr,
                    {},
                    connection};
  // Comes back with the answer, so that the request keeps the id that its sender knows.
  envelope.ticket.answerAs(frame.wireId);
  takeEnvelope(envelope);
}

void Peer::takeEnvelope(Envelope& envelope) {
  if (bus_->closedToOutside && (bus_->stillOpen.empty() || envelope.to() != bus_->stillOpen)) {
    envelope.ticket.fail(describeProcess(bus_->ownId) + " is ending");
    return;
  }
  const auto error = exceptionOf([&] {
    // To a channel of this process only: nothing is passed on, so nothing goes round.
    while (const auto channel = ChannelDirectory::instance().findHere(envelope.to())) {
      if (channel->deliver(envelope)) {
        return;
      }
    }
    envelope.ticket.fail("nobody serves channel '" + envelope.to() + "'");
  });
  if (error) {
    BUS_LOG(2, "a message from %s to channel '%s' was lost: %s", describeProcess(id_).c_str(),
            envelope.to().c_str(), error->c_str());
  }
}

void Peer::take(const ReplyFrame& frame, Payload data) {
  // One that is not known any more came too late.
  asked_.take(frame.wireId).answer(dataOf(frame.data, std::move(data)));
}

void Peer::take(const FailureFrame& frame) {
  asked_.take(frame.wireId).fail(std::string(frame.error));
}

}  // namespace zerva
