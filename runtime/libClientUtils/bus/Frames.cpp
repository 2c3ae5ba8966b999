#include "runtime/libClientUtils/bus/Frames.h"

#include <algorithm>
#include <utility>

#include "runtime/libClientUtils/CallChain.h"
#include "runtime/libClientUtils/bus/WireNumbers.h"

namespace zerva {

namespace {

enum class Type : std::uint8_t {
  Hello = 1,
  Welcome = 2,
  Crossed = 3,
  Message = 4,
  Request = 5,
  Reply = 6,
  Failure = 7
};

// "ZRVB": whoever begins with something else is lost here.
constexpr std::uint32_t kMagic = 0x5a525642;

void appendText(std::string& to, std::string_view text) {
  appendNumber(to, static_cast<std::uint16_t>(text.size()));
  to += text;
}

std::size_t textSize(std::string_view text) { return sizeof(std::uint16_t) + text.size(); }

// What a frame begins with; its length is known when the rest is.
constexpr std::size_t kLengthBytes = sizeof(std::uint32_t);

/** @returns the beginning of a frame, for fields of at most so many bytes. */
std::string begun(Type type, std::size_t fields) {
  std::string head;
  head.reserve(kLengthBytes + 1 + fields);
  head.append(kLengthBytes, '\0');
  appendNumber(head, static_cast<std::uint8_t>(type));
  return head;
}

/** Puts the length before the fields of a frame. */
std::string finished(std::string head, std::size_t dataSize) {
  const auto length = static_cast<std::uint32_t>(head.size() - kLengthBytes + dataSize);
  const auto bytes = bytesOf(length);
  std::copy(bytes.begin(), bytes.end(), head.begin());
  return head;
}

std::string greeting(Type type, std::uint16_t version, std::string_view id) {
  std::string head = begun(type, sizeof kMagic + sizeof version + textSize(id));
  appendNumber(head, kMagic);
  appendNumber(head, version);
  appendText(head, id);
  return finished(std::move(head), 0);
}

std::size_t messageSize(const MessageFrame& frame) {
  return sizeof frame.chain + sizeof(std::uint16_t) + frame.links.size() * sizeof(std::uint64_t) +
         textSize(frame.from) + textSize(frame.to);
}

void appendMessage(std::string& to, const MessageFrame& frame) {
  appendNumber(to, frame.chain);
  appendNumber(to, static_cast<std::uint16_t>(frame.links.size()));
  for (const std::uint64_t link : frame.links) {
    appendNumber(to, link);
  }
  appendText(to, frame.from);
  appendText(to, frame.to);
}

MalformedFrame malformed(const char* what) { return {std::string("a frame that is no ") + what}; }

template <typename Greeting>
Frame decodeGreeting(WireReader reader, const char* what) {
  std::uint32_t magic = 0;
  Greeting greeting{};
  if (!reader.take(magic) || magic != kMagic || !reader.take(greeting.version) ||
      !reader.takeText(greeting.id)) {
    return malformed(what);
  }
  // Another version may say more behind it.
  if (greeting.version == kWireVersion && !reader.rest().empty()) {
    return malformed(what);
  }
  return greeting;
}

bool takeMessage(WireReader& reader, MessageFrame& message) {
  std::uint16_t links = 0;
  if (!reader.take(message.chain) || message.chain == 0 || !reader.take(links) || links == 0 ||
      links > kMaximumChainLength) {
    return false;
  }
  // Not more than the limit, whatever else is missing.
  message.links.reserve(links);
  for (; links > 0; --links) {
    std::uint64_t link = 0;
    if (!reader.take(link)) {
      return false;
    }
    message.links.push_back(link);
  }
  if (!reader.takeText(message.from) || !reader.takeText(message.to)) {
    return false;
  }
  message.data = reader.rest();
  return true;
}

Frame decodeMessage(WireReader reader) {
  MessageFrame message{};
  return takeMessage(reader, message) ? Frame(std::move(message)) : malformed("message");
}

Frame decodeRequest(WireReader reader) {
  RequestFrame request{};
  const bool whole = reader.take(request.wireId) && request.wireId != 0 &&
                     reader.take(request.requestId) && request.requestId != 0 &&
                     reader.takeText(request.interface) && reader.takeText(request.protocol) &&
                     takeMessage(reader, request.message);
  return whole ? Frame(std::move(request)) : malformed("request");
}

Frame decodeReply(WireReader reader) {
  ReplyFrame reply{};
  if (!reader.take(reply.wireId)) {
    return malformed("reply");
  }
  reply.data = reader.rest();
  return reply;
}

Frame decodeFailure(WireReader reader) {
  FailureFrame failure{};
  // A failure without a text could be taken for a success.
  if (!reader.take(failure.wireId) || reader.rest().empty()) {
    return malformed("failure");
  }
  failure.error = reader.rest();
  return failure;
}

}  // namespace

std::string encodeHead(const HelloFrame& frame) {
  return greeting(Type::Hello, frame.version, frame.id);
}

std::string encodeHead(const WelcomeFrame& frame) {
  return greeting(Type::Welcome, frame.version, frame.id);
}

std::string encodeHead(const CrossedFrame& /*frame*/) {
  return finished(begun(Type::Crossed, 0), 0);
}

std::string encodeHead(const MessageFrame& frame) {
  std::string head = begun(Type::Message, messageSize(frame));
  appendMessage(head, frame);
  return finished(std::move(head), frame.data.size());
}

std::string encodeHead(const RequestFrame& frame) {
  std::string head = begun(Type::Request, sizeof frame.wireId + sizeof frame.requestId +
                                              textSize(frame.interface) + textSize(frame.protocol) +
                                              messageSize(frame.message));
  appendNumber(head, frame.wireId);
  appendNumber(head, frame.requestId);
  appendText(head, frame.interface);
  appendText(head, frame.protocol);
  appendMessage(head, frame.message);
  return finished(std::move(head), frame.message.data.size());
}

std::string encodeHead(const ReplyFrame& frame) {
  std::string head = begun(Type::Reply, sizeof frame.wireId);
  appendNumber(head, frame.wireId);
  return finished(std::move(head), frame.data.size());
}

std::string encodeHead(const FailureFrame& frame) {
  std::string head = begun(Type::Failure, sizeof frame.wireId);
  appendNumber(head, frame.wireId);
  return finished(std::move(head), frame.error.size());
}

Frame decodeFrame(std::string_view body) {
  WireReader reader(body);
  std::uint8_t type = 0;
  reader.take(type);
  switch (static_cast<Type>(type)) {
    case Type::Hello:
      return decodeGreeting<HelloFrame>(reader, "hello");
    case Type::Welcome:
      return decodeGreeting<WelcomeFrame>(reader, "welcome");
    case Type::Crossed:
      return reader.rest().empty() ? Frame(CrossedFrame{}) : malformed("crossed");
    case Type::Message:
      return decodeMessage(reader);
    case Type::Request:
      return decodeRequest(reader);
    case Type::Reply:
      return decodeReply(reader);
    case Type::Failure:
      return decodeFailure(reader);
  }
  return MalformedFrame{"a frame of the unknown type " + std::to_string(type)};
}

}  // namespace zerva
