#include "runtime/libClientUtils/trace/JsonText.h"

#include <cstddef>

namespace zerva {
namespace {

bool continues(std::string_view text, std::size_t at) {
  return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
}

/** @returns the length of the UTF-8 character at the beginning; 0 when there is none. */
std::size_t characterLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  const auto second = static_cast<unsigned char>(text.size() > 1 ? text[1] : '\0');
  if (first >= 0xC2 && first <= 0xDF) return continues(text, 1) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    // Neither longer than need be nor half of a pair of another encoding.
    if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F)) return 0;
    return continues(text, 1) && continues(text, 2) ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    if ((first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F)) return 0;
    return continues(text, 1) && continues(text, 2) && continues(text, 3) ? 4 : 0;
  }
  return 0;
}

void appendEscaped(std::string& json, char character) {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(character);
  if (character == '"' || character == '\\') {
    json += '\\';
    json += character;
  } else if (character == '\n') {
    json += "\\n";
  } else if (character == '\t') {
    json += "\\t";
  } else if (byte < 0x20) {
    json += "\\u00";
    json += digits[byte >> 4U];
    json += digits[byte & 0xFU];
  } else {
    json += character;
  }
}

}  // namespace

std::string validUtf8(std::string_view text) {
  std::string valid;
  while (!text.empty()) {
    const bool plain = static_cast<unsigned char>(text[0]) < 0x80;
    const std::size_t length = plain ? 1 : characterLength(text);
    if (length > 0) {
      valid += text.substr(0, length);
    } else {
      valid += "\xEF\xBF\xBD";
    }
    text.remove_prefix(length > 0 ? length : 1);
  }
  return valid;
}

void appendJsonText(std::string& json, std::string_view text) {
  json += '"';
  for (const char character : validUtf8(text)) appendEscaped(json, character);
  json += '"';
}

}  // namespace zerva
