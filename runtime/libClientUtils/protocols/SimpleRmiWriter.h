#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "framework/ValueWriter.h"

namespace zerva {

/** Appends values to a string, as MessagePack. */
class SimpleRmiWriter final : public ValueWriter {
 public:
  /** @param bytes not owned, outlives the writer. */
  explicit SimpleRmiWriter(std::string& bytes) : bytes_(bytes) {}

  void writeNothing() override;
  void writeBool(bool value) override;
  void writeInteger(std::int64_t value) override;
  void writeUnsigned(std::uint64_t value) override;
  void writeReal(double value) override;
  /** @throws std::length_error for a text of 4 GiB and more. */
  void writeText(const std::string& value) override;
  /** @throws std::length_error for a list of 2^32 values and more. */
  void beginList(std::size_t size) override;
  void endList() override {}

 private:
  std::string& bytes_;
};

}  // namespace zerva
