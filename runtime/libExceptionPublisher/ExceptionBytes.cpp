#include "runtime/libExceptionPublisher/ExceptionBytes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace zerva {
namespace {

constexpr std::string_view kMark = "ZEXC";
constexpr char kFormVersion = 1;
constexpr std::size_t kLengthAt = kMark.size() + 1;
constexpr std::size_t kMessageAt = kLengthAt + 4;

}  // namespace

std::string encodeExceptionMessage(std::string_view message) {
  const auto length = static_cast<std::uint32_t>(
      std::min<std::size_t>(message.size(), std::numeric_limits<std::uint32_t>::max()));
  std::string bytes(kMark);
  bytes += kFormVersion;
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes += static_cast<char>((length >> shift) & 0xffU);
  }
  bytes += message.substr(0, length);
  return bytes;
}

std::optional<std::string> decodeExceptionMessage(std::string_view bytes) {
  if (bytes.size() < kMessageAt || bytes.substr(0, kMark.size()) != kMark ||
      bytes[kMark.size()] != kFormVersion) {
    return std::nullopt;
  }
  std::uint32_t length = 0;
  for (std::size_t i = kLengthAt; i < kMessageAt; ++i) {
    length = (length << 8U) | static_cast<unsigned char>(bytes[i]);
  }
  if (bytes.size() - kMessageAt != length) return std::nullopt;
  return std::string(bytes.substr(kMessageAt));
}

}  // namespace zerva
