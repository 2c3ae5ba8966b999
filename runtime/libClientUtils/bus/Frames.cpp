#include "runtime/libClientUtils/bus/Frames.h"

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

/** Puts length and type before a frame's fields. */
std::string frameOf(Type type, const std::string& fields, std::size_t dataSize) {
  std::string head;
  head.reserve(sizeof(std::uint32_t) + 1 + fields.size());
  appendNumber(head, static_cast<std::uint32_t>(1 + fields.size() + dataSize));
  appendNumber(head, static_cast<std::uint8_t>(type));
  return head += fields;
}

std::string greeting(Type type, std::uint16_t version, std::string_view id) {
  std::string fields;
  appendNumber(fields, kMagic);
  appendNumber(fields, version);
  appendText(fields, id);
  return frameOf(type, fields, 0);
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

std::string encodeHead(const CrossedFrame& /*frame*/) { return frameOf(Type::Crossed, {}, 0); }

std::string encodeHead(const MessageFrame& frame) {
  std::string fields;
  appendMessage(fields, frame);
  return frameOf(Type::Message, fields, frame.data.size());
}

std::string encodeHead(const RequestFrame& frame) {
  std::string fields;
  appendNumber(fields, frame.wireId);
  appendNumber(fields, frame.requestId);
  appendText(fields, frame.interface);
  appendText(fields, frame.protocol);
  appendMessage(fields, frame.message);
  return frameOf(Type::Request, fields, frame.message.data.size());
}

std::string encodeHead(const ReplyFrame& frame) {
  std::string fields;
  appendNumber(fields, frame.wireId);
  return frameOf(Type::Reply, fields, frame.data.size());
}

std::string encodeHead(const FailureFrame& frame) {
  std::string fields;
  appendNumber(fields, frame.wireId);
  return frameOf(Type::Failure, fields, frame.error.size());
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
