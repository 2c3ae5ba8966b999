#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zerva {

inline constexpr unsigned kBitsOfByte = 8;

/** @returns a number's bytes, the most significant first, whatever this machine does. */
template <typename Number>
std::array<char, sizeof(Number)> bytesOf(Number number) {
  std::array<char, sizeof(Number)> bytes{};
  std::uint64_t left = number;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
    *byte = static_cast<char>(static_cast<unsigned char>(left));
    left >>= kBitsOfByte;
  }
  return bytes;
}

/** Appends a number, the most significant byte first. */
template <typename Number>
void appendNumber(std::string& to, Number number) {
  const auto bytes = bytesOf(number);
  to.append(bytes.data(), bytes.size());
}

/** Takes numbers and texts off the front of bytes that nobody vouches for. */
class WireReader {
 public:
  explicit WireReader(std::string_view bytes) : left_(bytes) {}

  /** @returns false when there are not enough bytes; then nothing is taken. */
  template <typename Number>
  bool take(Number& number) {
    if (left_.size() < sizeof number) {
      return false;
    }
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof number; ++i) {
      value = value << kBitsOfByte | static_cast<unsigned char>(left_[i]);
    }
    number = static_cast<Number>(value);
    left_.remove_prefix(sizeof number);
    return true;
  }

  /** Takes a text that stands behind its length of 16 bits. It points into the bytes. */
  bool takeText(std::string_view& text) {
    const WireReader before = *this;
    std::uint16_t length = 0;
    if (!take(length) || left_.size() < length) {
      *this = before;
      return false;
    }
    text = left_.substr(0, length);
    left_.remove_prefix(length);
    return true;
  }

  std::string_view rest() const { return left_; }

 private:
  std::string_view left_;
};

}  // namespace zerva
