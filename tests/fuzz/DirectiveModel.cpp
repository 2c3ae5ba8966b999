#include "tests/fuzz/DirectiveModel.h"

namespace zerva::fuzz {
namespace {

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool isOneOf(char c, std::string_view characters) {
  for (const char candidate : characters) {
    if (c == candidate) return true;
  }
  return false;
}

std::vector<std::string> wordsOf(std::string_view text) {
  std::vector<std::string> words;
  bool inWord = false;
  for (const char c : text) {
    if (isSpace(c)) {
      inWord = false;
      continue;
    }
    if (!inWord) words.emplace_back();
    inWord = true;
    words.back() += c;
  }
  return words;
}

/** @returns whether the first colon of a word is there, and is its last character. */
bool endsInItsFirstColon(const std::string& word) {
  std::size_t colons = 0;
  for (const char c : word) {
    if (c == ':') ++colons;
  }
  return colons == 1 && word[word.size() - 1] == ':';
}

}  // namespace

std::string normalisedByTheRules(std::string_view text) {
  const std::vector<std::string> words = wordsOf(text);
  std::string result;
  for (std::size_t number = 1; number <= words.size(); ++number) {
    const std::string& word = words[number - 1];
    result += word;
    const bool isLast = number == words.size();
    if (isLast) continue;
    if (number == 1 && endsInItsFirstColon(word)) continue;
    result += ' ';
  }
  return result;
}

std::vector<std::string> tokensByTheRules(std::string_view text, std::string_view separators) {
  const std::string line = normalisedByTheRules(text);
  if (!line.empty() && line[0] == '#') return {"comment"};

  std::vector<std::string> tokens{""};
  bool colonSeen = false;
  for (const char c : line) {
    const bool firstColon = c == ':' && !colonSeen;
    if (firstColon || (colonSeen && isOneOf(c, separators))) {
      tokens.emplace_back();
    } else {
      tokens.back() += c;
    }
    colonSeen = colonSeen || firstColon;
  }
  if (!colonSeen) return {};
  while (tokens.size() < 5) tokens.emplace_back();
  return tokens;
}

}  // namespace zerva::fuzz
