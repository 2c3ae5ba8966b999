#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "framework/ValueWriter.h"

namespace zerva {

/** Appends values to a string, as elements of XML. */
class SvcXmlWriter final : public ValueWriter {
 public:
  /** @param text not owned, outlives the writer. */
  explicit SvcXmlWriter(std::string& text) : text_(text) {}

  void writeNothing() override;
  void writeBool(bool value) override;
  void writeInteger(std::int64_t value) override;
  void writeUnsigned(std::uint64_t value) override;
  void writeReal(double value) override;
  void writeText(const std::string& value) override;
  void beginList(std::size_t size) override;
  void endList() override;

 private:
  void element(const char* name, const std::string& content);

  std::string& text_;
};

}  // namespace zerva
