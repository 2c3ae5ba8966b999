#include "registry/RegistryText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "framework/ZervaException.h"

namespace zerva {
namespace {

struct Word {
  std::string_view word;
  /** How many follow it. */
  std::size_t fields;
};

constexpr std::array<Word, 5> kWords{
    {{"find", 2}, {"find_proxy", 1}, {"find_invoker", 2}, {"reg_proxy", 4}, {"reg_invoker", 4}}};

/** @returns the text for a message: no longer than a line, without what would break the line. */
std::string shown(const std::string& text) {
  constexpr std::size_t most = 100;
  std::string line = text.substr(0, most);
  for (char& c : line) {
    if (static_cast<unsigned char>(c) < ' ') c = '?';
  }
  return "'" + line + (text.size() > most ? "...'" : "'");
}

}  // namespace

RegistryText parseRegistryText(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) {
    throw ZervaException(shown(text) + " has no colon");
  }
  RegistryText parsed;
  parsed.word = text.substr(0, colon);
  const auto* const known = std::find_if(kWords.begin(), kWords.end(),
                                         [&](const Word& one) { return one.word == parsed.word; });
  if (known == kWords.end()) {
    throw ZervaException(shown(text) + " begins with a word that is not known");
  }
  parsed.fields.reserve(known->fields);
  std::size_t start = colon + 1;
  for (;;) {
    const std::size_t comma = text.find(',', start);
    parsed.fields.push_back(text.substr(start, comma - start));
    if (comma == std::string::npos) {
      break;
    }
    start = comma + 1;
  }
  // The last field of a question is the name of the asking process's channel, and nobody can keep
  // that from having commas.
  if (parsed.word == "find" && parsed.fields.size() > known->fields) {
    parsed.fields.resize(known->fields);
    parsed.fields.back() = text.substr(text.find(',', colon) + 1);
  }
  if (parsed.fields.size() != known->fields) {
    throw ZervaException(shown(text) + " has " + std::to_string(parsed.fields.size()) +
                         " fields where " + std::to_string(known->fields) + " are expected");
  }
  return parsed;
}

}  // namespace zerva
