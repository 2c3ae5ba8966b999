#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "framework/Export.h"

namespace zerva {

// What processes say to each other on the bus; docs/wire-format.md describes it byte for byte.

inline constexpr std::uint16_t kWireVersion = 1;

/** Most bytes of a frame, those of its length not counted. */
inline constexpr std::size_t kMaximumFrame = std::size_t{16} * 1024 * 1024;

/** Most bytes of a frame before the two processes know each other. */
inline constexpr std::size_t kMaximumGreeting = 256;

/** Most bytes of a name: of a channel, an interface or a protocol. */
inline constexpr std::size_t kMaximumName = 65535;

/** The first frame of whoever connects. Its texts, as all below, point into somebody's bytes. */
struct HelloFrame {
  std::uint16_t version;
  std::string_view id;
};

/** The answer to it: from here on this connection carries everything. */
struct WelcomeFrame {
  std::uint16_t version;
  std::string_view id;
};

/** The other answer: both have connected at once, and the other connection is the one to use. */
struct CrossedFrame {};

/** A message that nobody answers. */
struct MessageFrame {
  std::uint64_t chain;
  std::vector<std::uint64_t> links;
  std::string_view from;
  std::string_view to;
  std::string_view data;
};

struct RequestFrame {
  /** The reply is matched by it; one outstanding request of a connection's side has it. */
  std::uint32_t wireId;
  /** What the sender knows the request by; told to whoever serves it. */
  std::uint32_t requestId;
  /** What a call is made to, and in which protocol its data are; both empty when it is no call. */
  std::string_view interface;
  std::string_view protocol;
  MessageFrame message;
};

struct ReplyFrame {
  std::uint32_t wireId;
  std::string_view data;
};

struct FailureFrame {
  std::uint32_t wireId;
  std::string_view error;
};

/** What is no frame. */
struct MalformedFrame {
  std::string why;
};

using Frame = std::variant<MalformedFrame, HelloFrame, WelcomeFrame, CrossedFrame, MessageFrame,
                           RequestFrame, ReplyFrame, FailureFrame>;

/**
 * @returns the bytes of a frame up to its `data` or `error`, which are sent behind it and are
 *     counted in the frame's length. The caller keeps to the limits.
 */
ZERVA_EXPORT std::string encodeHead(const HelloFrame& frame);
ZERVA_EXPORT std::string encodeHead(const WelcomeFrame& frame);
ZERVA_EXPORT std::string encodeHead(const CrossedFrame& frame);
ZERVA_EXPORT std::string encodeHead(const MessageFrame& frame);
ZERVA_EXPORT std::string encodeHead(const RequestFrame& frame);
ZERVA_EXPORT std::string encodeHead(const ReplyFrame& frame);
ZERVA_EXPORT std::string encodeHead(const FailureFrame& frame);

/**
 * @param body any bytes: a frame without its length.
 * @returns the frame, which points into the bytes, or why there is none.
 */
ZERVA_EXPORT Frame decodeFrame(std::string_view body);

/**
 * @param beginning of a frame without its length, of which the end may be missing.
 * @returns how many bytes stand before the `data`; 0 when that is not known, or it has none.
 */
ZERVA_EXPORT std::size_t sizeBeforeData(std::string_view beginning);

}  // namespace zerva
