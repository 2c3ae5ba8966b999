// Input: a byte that says in which pieces the rest arrives, and what a connection carries.

#include <algorithm>
#include <string>
#include <variant>
#include <vector>

#include "runtime/libClientUtils/bus/FrameBuffer.h"
#include "runtime/libClientUtils/bus/Frames.h"
#include "tests/fuzz/FuzzTarget.h"

using namespace zerva;
using namespace zerva::fuzz;

namespace {

constexpr std::size_t kLength = 4;

// What is sent behind the head of a frame.
std::string_view dataOf(const HelloFrame& /*frame*/) { return {}; }
std::string_view dataOf(const WelcomeFrame& /*frame*/) { return {}; }
std::string_view dataOf(const CrossedFrame& /*frame*/) { return {}; }
std::string_view dataOf(const MessageFrame& frame) { return frame.data; }
std::string_view dataOf(const RequestFrame& frame) { return frame.message.data; }
std::string_view dataOf(const ReplyFrame& frame) { return frame.data; }
std::string_view dataOf(const FailureFrame& frame) { return frame.error; }

/** Other versions may have more behind what is known, which is not kept. */
template <typename Kind>
bool isKnownWhole(const Kind& frame) {
  if constexpr (std::is_same_v<Kind, HelloFrame> || std::is_same_v<Kind, WelcomeFrame>) {
    return frame.version == kWireVersion;
  }
  return true;
}

template <typename Kind>
void checkFrame(const Kind& frame, std::string_view body) {
  if constexpr (std::is_same_v<Kind, MalformedFrame>) {
    require(!frame.why.empty(), "it is said why bytes are no frame");
  } else {
    const std::string written = encodeHead(frame).substr(kLength).append(dataOf(frame));
    require(isKnownWhole(frame) ? written == body : body.substr(0, written.size()) == written,
            "a frame that was read is written with the same bytes");
  }
}

void checkBody(std::string_view body) {
  const Frame frame = decodeFrame(body);
  std::visit([&](const auto& kind) { checkFrame(kind, body); }, frame);
}

struct Received {
  std::vector<std::string> bodies;
  bool tooLong = false;
  bool operator==(const Received&) const = default;
};

/** Takes what is whole out of the buffer; the first frame is a greeting, which is short. */
void takeFrames(FrameBuffer& buffer, std::size_t& limit, Received& received) {
  std::string_view head;
  Payload data;
  FrameBuffer::Next next = FrameBuffer::Next::Whole;
  while ((next = buffer.next(head, data)) == FrameBuffer::Next::Whole) {
    const std::string body = std::string(head) + (data != nullptr ? *data : std::string());
    require(body.size() <= limit, "no frame is longer than the limit");
    received.bodies.push_back(body);
    limit = kMaximumFrame;
    buffer.setLimit(limit);
  }
  received.tooLong = next == FrameBuffer::Next::TooLong;
  require(received.tooLong || buffer.held() < limit + kLength,
          "no more is held than a frame may have");
}

Received receive(std::string_view stream, std::size_t piece) {
  std::size_t limit = kMaximumGreeting;
  FrameBuffer buffer(limit, &sizeBeforeData);
  Received received;
  while (!stream.empty() && !received.tooLong) {
    buffer.append(stream.substr(0, piece));
    stream.remove_prefix(std::min(piece, stream.size()));
    takeFrames(buffer, limit, received);
  }
  return received;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view stream = textOf(data + 1, size - 1);
  checkBody(stream);
  const Received received = receive(stream, std::size_t{data[0]} + 1);
  require(received == receive(stream, stream.size()), "frames are the same however they arrive");
  for (const std::string& body : received.bodies) checkBody(body);
  return 0;
}
