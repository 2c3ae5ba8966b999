#include "tests/fakes/Text.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "tests/fakes/Objects.h"

namespace zerva::fakes {
namespace {

/** A list that stays advanced when it is handed on, on every word size. */
struct Arguments {
  std::va_list list;
};

/** One conversion of a format: how many stars it has, how long its argument is, and which it is. */
struct Conversion {
  int stars = 0;
  std::string length;
  char kind = 0;
};

Conversion readConversion(const char*& at) {
  Conversion conversion;
  while (*at != 0 && std::strchr("-+ #0123456789.*", *at) != nullptr) {
    if (*at++ == '*') ++conversion.stars;
  }
  while (*at != 0 && std::strchr("hljztL", *at) != nullptr) conversion.length += *at++;
  if (*at != 0) conversion.kind = *at++;
  return conversion;
}

long long signedArgument(const std::string& length, Arguments& given) {
  if (length == "l") return va_arg(given.list, long);
  if (length == "ll") return va_arg(given.list, long long);
  if (length == "j") return va_arg(given.list, std::intmax_t);
  if (length == "z" || length == "t") return va_arg(given.list, std::ptrdiff_t);
  return va_arg(given.list, int);
}

unsigned long long unsignedArgument(const std::string& length, Arguments& given) {
  if (length == "l") return va_arg(given.list, unsigned long);
  if (length == "ll") return va_arg(given.list, unsigned long long);
  if (length == "j") return va_arg(given.list, std::uintmax_t);
  if (length == "z" || length == "t") return va_arg(given.list, std::size_t);
  return va_arg(given.list, unsigned);
}

std::string argument(const Conversion& conversion, Arguments& given) {
  switch (conversion.kind) {
    case 's': {
      const char* text = va_arg(given.list, const char*);
      return text == nullptr ? "null" : inQuotes(text);
    }
    case 'p':
      return Objects::name(va_arg(given.list, const void*));
    case 'd':
    case 'i':
      return std::to_string(signedArgument(conversion.length, given));
    case 'u':
    case 'x':
    case 'X':
    case 'o':
      return std::to_string(unsignedArgument(conversion.length, given));
    case 'c':
      return inQuotes(std::string(1, static_cast<char>(va_arg(given.list, int))));
    case 'f':
    case 'g':
    case 'e':
      return std::to_string(va_arg(given.list, double));
    default:
      return std::string("unknown conversion ") + conversion.kind;
  }
}

std::vector<std::string> arguments(const char* format, Arguments& given) {
  std::vector<std::string> result;
  for (const char* at = format; *at != 0;) {
    if (*at++ != '%') continue;
    const Conversion conversion = readConversion(at);
    for (int i = 0; i < conversion.stars; ++i)
      result.push_back(std::to_string(va_arg(given.list, int)));
    if (conversion.kind != '%') result.push_back(argument(conversion, given));
  }
  return result;
}

}  // namespace

std::string inQuotes(const std::string& text) {
  std::string result = "\"";
  for (const char character : text) {
    if (character == '\n') {
      result += "\\n";
    } else if (character == '"' || character == '\\') {
      result += {'\\', character};
    } else if (static_cast<unsigned char>(character) < ' ') {
      char buffer[8];
      std::snprintf(buffer, sizeof buffer, "\\x%02x", static_cast<unsigned>(character) & 0xffU);
      result += buffer;
    } else {
      result += character;
    }
  }
  return result + "\"";
}

std::string joined(const std::vector<std::string>& pieces) {
  std::string result;
  for (const std::string& piece : pieces) result += (result.empty() ? "" : ", ") + piece;
  return result;
}

Formatted formatted(const char* format, std::va_list list) {
  Formatted result;
  std::va_list copy;
  Arguments given;
  va_copy(given.list, list);
  result.arguments = arguments(format, given);
  va_end(given.list);
  va_copy(copy, list);
  const int length = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  std::vector<char> buffer(static_cast<std::size_t>(length) + 1);
  va_copy(copy, list);
  std::vsnprintf(buffer.data(), buffer.size(), format, copy);
  va_end(copy);
  result.text.assign(buffer.data(), static_cast<std::size_t>(length));
  return result;
}

}  // namespace zerva::fakes
