#include "runtime/libClientUtils/protocols/SvcXmlWriter.h"

#include <array>
#include <charconv>

#include "runtime/libClientUtils/protocols/XmlText.h"

namespace zerva {

void SvcXmlWriter::element(const char* name, const std::string& content) {
  text_ += std::string("<") + name + ">" + content + "</" + name + ">";
}

void SvcXmlWriter::writeNothing() { text_ += "<nothing/>"; }

void SvcXmlWriter::writeBool(bool value) { element("bool", value ? "true" : "false"); }

void SvcXmlWriter::writeInteger(std::int64_t value) { element("integer", std::to_string(value)); }

void SvcXmlWriter::writeUnsigned(std::uint64_t value) { element("integer", std::to_string(value)); }

void SvcXmlWriter::writeReal(double value) {
  // The shortest digits that give the same number; 24 characters are the most that it takes.
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  element("real", std::string(digits.data(), end));
}

void SvcXmlWriter::writeText(const std::string& value) {
  if (isXmlText(value)) {
    element("text", xmlEscaped(value));
  } else {
    element("bytes", hexadecimal(value));
  }
}

void SvcXmlWriter::beginList(std::size_t /*size*/) { text_ += "<list>"; }

void SvcXmlWriter::endList() { text_ += "</list>"; }

}  // namespace zerva
