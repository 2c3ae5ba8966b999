#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zerva {

inline constexpr unsigned kBitsOfByte = 8;

/** Appends a number, the most significant byte first, whatever this machine does. */
template <typename Number>
void appendNumber(std::string& to, Number number) {
  for (unsigned left = sizeof number; left > 0; --left) {
    to += static_cast<char>(
        static_cast<unsigned char>(std::uint64_t{number} >> ((left - 1) * kBitsOfByte)));
  }
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
