#include "host/explain/Words.h"

#include "host/check/ParsedLine.h"

namespace zerva {

std::string listed(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t at = 0; at < words.size(); ++at) {
    if (at > 0) text += at + 1 == words.size() ? " and " : ", ";
    text += words[at];
  }
  return text;
}

std::vector<std::string> textsOf(const std::vector<Word>& words) {
  std::vector<std::string> texts;
  for (const Word& word : words) texts.push_back(word.text);
  return texts;
}

std::string capitalised(std::string text) {
  if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') {
    text[0] = static_cast<char>(text[0] - 'a' + 'A');
  }
  return text;
}

std::string counted(std::size_t number, const std::string& what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

std::string lineNumber(const ParsedLine& line) { return "line " + std::to_string(line.number()); }

}  // namespace zerva
