#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "framework/ValueReader.h"

namespace zerva {

/**
 * Reads MessagePack value by value, straight from the bytes: nothing is allocated for what the
 * bytes only claim to hold.
 */
class SimpleRmiReader final : public ValueReader {
 public:
  /** @param bytes not owned, outlive the reader. */
  explicit SimpleRmiReader(std::string_view bytes) : bytes_(bytes) {}

  void readNothing() override;
  bool readBool() override;
  std::int64_t readInteger() override;
  std::uint64_t readUnsigned() override;
  double readReal() override;
  std::string readText() override;
  /** @returns as `readText`, within the bytes. */
  std::string_view readView();
  std::size_t beginList() override;
  void endList() override {}

  /** @throws DecodeException when there is more to read. */
  void end() const;

 private:
  struct Value;
  Value next();

  std::string_view bytes_;
  std::size_t at_ = 0;
};

}  // namespace zerva
