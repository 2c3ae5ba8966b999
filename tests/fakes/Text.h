#pragma once

#include <cstdarg>
#include <string>
#include <vector>

namespace zerva::fakes {

/** @returns the text in quotation marks, with line feeds and other control characters visible. */
std::string inQuotes(const std::string& text);

/** @returns the pieces with ", " between them. */
std::string joined(const std::vector<std::string>& pieces);

/** A call of a function of the printf kind, taken apart. */
struct Formatted {
  /** The text that the call makes. */
  std::string text;
  /** Each argument: texts in quotation marks, addresses as names of objects, numbers as they are.
   */
  std::vector<std::string> arguments;
};

/** Takes a call apart; `list` is left as it was. */
Formatted formatted(const char* format, std::va_list list);

}  // namespace zerva::fakes
