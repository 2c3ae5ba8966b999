#pragma once

#include <algorithm>
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
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    // In this form compilers make one swap of bytes of it.
    bytes[i] = static_cast<char>(number >> (kBitsOfByte * (bytes.size() - 1 - i)) & 0xFF);
  }
  return bytes;
}

/** Appends a number, the most significant byte first. */
template <typename Number>
void appendNumber(std::string& to, Number number) {
  const auto bytes = bytesOf(number);
  to.append(bytes.data(), bytes.size());
}

/** Writes numbers and texts one behind the other, into room that the caller has made for them. */
class WireWriter {
 public:
  explicit WireWriter(char* to) : to_(to) {}

  /** The most significant byte first. */
  template <typename Number>
  void put(Number number) {
    const auto bytes = bytesOf(number);
    to_ = std::copy(bytes.begin(), bytes.end(), to_);
  }

  /** Without its length. */
  void put(std::string_view text) { to_ = std::copy(text.begin(), text.end(), to_); }

 private:
  char* to_;
};

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
