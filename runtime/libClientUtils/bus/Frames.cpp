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

std::size_t textSize(std::string_view text) { return sizeof(std::uint16_t) + text.size(); }

/** The bytes of a frame up to its data, whose number is known before. */
class Head {
 public:
  /**
   * @param fields bytes of its fields.
   * @param data bytes that are sent behind it.
   */
  Head(Type type, std::size_t fields, std::size_t data)
      : bytes_(sizeof(std::uint32_t) + sizeof type + fields, '\0'), writer_(bytes_.data()) {
    writer_.put(static_cast<std::uint32_t>(sizeof type + fields + data));
    writer_.put(static_cast<std::uint8_t>(type));
  }

  template <typename Number>
  Head& put(Number number) {
    writer_.put(number);
    return *this;
  }

  Head& put(std::string_view text) {
    writer_.put(static_cast<std::uint16_t>(text.size()));
    writer_.put(text);
    return *this;
  }

  Head& put(const MessageFrame& frame);

  std::string take() { return std::move(bytes_); }

 private:
  std::string bytes_;
  WireWriter writer_;
};

std::string greeting(Type type, std::uint16_t version, std::string_view id) {
  return Head(type, sizeof kMagic + sizeof version + textSize(id), 0)
      .put(kMagic)
      .put(version)
      .put(id)
      .take();
}

std::size_t messageSize(const MessageFrame& frame) {
  return sizeof frame.chain + sizeof(std::uint16_t) + frame.links.size() * sizeof(std::uint64_t) +
         textSize(frame.from) + textSize(frame.to);
}

Head& Head::put(const MessageFrame& frame) {
  put(frame.chain).put(static_cast<std::uint16_t>(frame.links.size()));
  for (const std::uint64_t link : frame.links) put(link);
  return put(frame.from).put(frame.to);
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

std::string encodeHead(const CrossedFrame& /*frame*/) { return Head(Type::Crossed, 0, 0).take(); }

std::string encodeHead(const MessageFrame& frame) {
  return Head(Type::Message, messageSize(frame), frame.data.size()).put(frame).take();
}

std::string encodeHead(const RequestFrame& frame) {
  const MessageFrame& message = frame.message;
  const std::size_t fields = sizeof frame.wireId + sizeof frame.requestId +
                             textSize(frame.interface) + textSize(frame.protocol) +
                             messageSize(message);
  return Head(Type::Request, fields, message.data.size())
      .put(frame.wireId)
      .put(frame.requestId)
      .put(frame.interface)
      .put(frame.protocol)
      .put(message)
      .take();
}

std::string encodeHead(const ReplyFrame& frame) {
  return Head(Type::Reply, sizeof frame.wireId, frame.data.size()).put(frame.wireId).take();
}

std::string encodeHead(const FailureFrame& frame) {
  return Head(Type::Failure, sizeof frame.wireId, frame.error.size()).put(frame.wireId).take();
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

std::size_t sizeBeforeData(std::string_view beginning) {
  // What is missing is missing from the data, or it is no frame yet.
  const Frame frame = decodeFrame(beginning);
  if (const auto* const request = std::get_if<RequestFrame>(&frame)) {
    return beginning.size() - request->message.data.size();
  }
  if (const auto* const message = std::get_if<MessageFrame>(&frame)) {
    return beginning.size() - message->data.size();
  }
  const auto* const reply = std::get_if<ReplyFrame>(&frame);
  return reply != nullptr ? beginning.size() - reply->data.size() : 0;
}

}  // namespace zerva
