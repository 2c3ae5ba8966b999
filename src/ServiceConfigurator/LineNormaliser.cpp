#include "src/ServiceConfigurator/LineNormaliser.h"

#include <cstddef>
#include <sstream>
#include <vector>

namespace zerva {

namespace {

std::vector<std::string> wordsOf(const std::string& text) {
  std::istringstream stream(text);
  // Without it, memory that is missing for a word would end the line before that word.
  stream.exceptions(std::ios::badbit);
  std::vector<std::string> words;
  std::string word;
  while (stream >> word) {
    words.push_back(word);
  }
  return words;
}

/** A keyword is glued to its first field. One with an earlier colon is no keyword of that kind. */
bool isKeyword(const std::string& word) { return word.find(':') == word.size() - 1; }

}  // namespace

void normaliseLine(std::string& text) {
  const std::vector<std::string> words = wordsOf(text);
  std::string result;
  for (std::size_t index = 0; index < words.size(); ++index) {
    result += words[index];
    const bool last = index + 1 == words.size();
    const bool glued = index == 0 && isKeyword(words[index]);
    if (!last && !glued) {
      result += ' ';
    }
  }
  text = result;
}

}  // namespace zerva
