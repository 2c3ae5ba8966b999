#include "runtime/libClientUtils/protocols/XmlText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zerva {
namespace {

struct Utf8Form {
  std::size_t size;
  std::uint32_t bits;
  std::uint32_t smallest;
};

/** @returns how a sequence with this first byte is made; a size of 0 when none begins so. */
Utf8Form utf8Form(unsigned char first) {
  if (first < 0x80) return {1, first, 0};
  if ((first & 0xe0U) == 0xc0) return {2, first & 0x1fU, 0x80};
  if ((first & 0xf0U) == 0xe0) return {3, first & 0x0fU, 0x800};
  if ((first & 0xf8U) == 0xf0) return {4, first & 0x07U, 0x10000};
  return {0, 0, 0};
}

bool isXmlCharacter(std::uint32_t code) {
  return code == '\t' || code == '\n' || code == '\r' || (code >= 0x20 && code <= 0xd7ff) ||
         (code >= 0xe000 && code <= 0xfffd) || (code >= 0x10000 && code <= 0x10ffff);
}

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/** @returns where the name of a tag ends; parsers let it have quotes, and even an opening bracket.
 */
std::size_t endOfName(std::string_view text, std::size_t at) {
  while (at < text.size() && !isSpace(text[at]) && text[at] != '/' && text[at] != '>') ++at;
  return at;
}

/**
 * @returns where the tag ends whose name begins at a place. A quote hides the end only where the
 *     value of an attribute begins: anywhere else parsers take it for a part of a name. Adds the
 *     attributes on the way.
 */
std::size_t endOfTag(std::string_view text, std::size_t at, std::size_t& attributes) {
  char quote = '\0';
  char before = '\0';  // the last character that is no space
  for (at = endOfName(text, at); at < text.size() && (quote != '\0' || text[at] != '>'); ++at) {
    const char c = text[at];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (before == '=' && (c == '"' || c == '\'')) {
      quote = c;
      ++attributes;
    }
    if (!isSpace(c)) before = c;
  }
  return at;
}

/** @returns where a processing instruction ends; neither quotes nor brackets mean anything in it.
 */
std::size_t endOfInstruction(std::string_view text, std::size_t at) {
  const std::size_t end = text.find("?>", at);
  return end == std::string_view::npos ? text.size() : end + 1;
}

std::string reference(char c) { return "&#" + std::to_string(static_cast<unsigned char>(c)) + ";"; }

}  // namespace

bool isXmlText(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Form form = utf8Form(static_cast<unsigned char>(text[at]));
    if (form.size == 0 || form.size > text.size() - at) return false;
    std::uint32_t code = form.bits;
    for (std::size_t i = 1; i < form.size; ++i) {
      const auto byte = static_cast<unsigned char>(text[at + i]);
      if ((byte & 0xc0U) != 0x80) return false;
      code = (code << 6U) | (byte & 0x3fU);
    }
    if (code < form.smallest || !isXmlCharacter(code)) return false;
    at += form.size;
  }
  return true;
}

std::string xmlEscaped(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\r':  // a reader turns a plain one into a line feed
        escaped += reference(c);
        break;
      default:
        escaped += escaped.empty() && isSpace(c) ? reference(c) : std::string(1, c);
    }
  }
  return escaped;
}

std::string hexadecimal(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += digits[byte >> 4U];
    text += digits[byte & 0x0fU];
  }
  return text;
}

std::optional<std::string> fromHexadecimal(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  const auto digit = [](char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
  };
  std::string bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t at = 0; at < text.size(); at += 2) {
    const int high = digit(text[at]);
    const int low = digit(text[at + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes += static_cast<char>(high * 16 + low);
  }
  return bytes;
}

std::optional<XmlShape> xmlShape(std::string_view text) {
  XmlShape shape;
  unsigned depth = 0;
  if (text.find('\0') != std::string_view::npos) return std::nullopt;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '<') continue;
    const char kind = at + 1 < text.size() ? text[at + 1] : '\0';
    if (kind == '!' || kind == '\0') return std::nullopt;
    if (kind == '?') {
      at = endOfInstruction(text, at + 2);
      continue;
    }
    at = endOfTag(text, kind == '/' ? at + 2 : at + 1, shape.nodes);
    if (kind != '/') {
      ++shape.nodes;
      shape.depth = std::max(shape.depth, ++depth);
    }
    if ((kind == '/' || text[at - 1] == '/') && depth > 0) --depth;
  }
  return shape;
}

}  // namespace zerva
