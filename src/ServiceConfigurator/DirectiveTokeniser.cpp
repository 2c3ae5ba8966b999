#include "src/ServiceConfigurator/DirectiveTokeniser.h"

#include <cstddef>

#include "src/ServiceConfigurator/LineNormaliser.h"

namespace zerva {

namespace {

/** Callers read the keyword and four fields without asking how many there are. */
constexpr std::size_t kLeastTokens = 5;

/** @returns where the first separator at or behind `start` is, or `npos`. */
std::size_t findSeparator(const std::string& text, const std::string& separators,
                          std::size_t start) {
  // One character is found by words of memory, one of several by looking at each.
  return separators.size() == 1 ? text.find(separators.front(), start)
                                : text.find_first_of(separators, start);
}

}  // namespace

std::vector<std::string> tokeniseDirective(const char* line, int length,
                                           const std::string& separators) {
  std::string text(line, static_cast<std::size_t>(length));
  normaliseLine(text);
  if (!text.empty() && text.front() == '#') {
    return {"comment"};
  }
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) {
    return {};
  }

  std::vector<std::string> tokens;
  tokens.reserve(kLeastTokens);
  tokens.push_back(text.substr(0, colon));
  std::size_t start = colon + 1;
  for (std::size_t found = findSeparator(text, separators, start); found != std::string::npos;
       found = findSeparator(text, separators, start)) {
    tokens.push_back(text.substr(start, found - start));
    start = found + 1;
  }
  tokens.push_back(text.substr(start));
  if (tokens.size() < kLeastTokens) {
    tokens.resize(kLeastTokens);
  }
  return tokens;
}

}  // namespace zerva
