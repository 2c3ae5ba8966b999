#include "host/check/Rule.h"

namespace zerva {

Findings::Findings(const Rule& rule, std::vector<Finding>& collected)
    : rule_(rule), collected_(collected) {}

void Findings::add(const CheckedFile& file, const ParsedLine& line, const Word& word,
                   const std::string& text, const std::string& suggestion) {
  addAt(file, line, word.column, word.text.size(), text, suggestion);
}

void Findings::addAt(const CheckedFile& file, const ParsedLine& line, std::size_t column,
                     std::size_t length, const std::string& text, const std::string& suggestion) {
  collected_.push_back(
      {file.path, line.number(), column, text, length, rule_.severity, rule_.code, suggestion});
}

void Findings::addToFile(const CheckedFile& file, const std::string& text) {
  collected_.push_back({file.path, 1, 1, text, 0, rule_.severity, rule_.code, {}});
}

std::string quoted(const std::string& name) { return "'" + name + "'"; }

void apply(const Rule& rule, const CheckSubject& subject, std::vector<Finding>& collected) {
  Findings findings(rule, collected);
  rule.look(subject, findings);
}

std::string placeOf(const CheckedFile& file, const ParsedLine& line, const CheckedFile& seenFrom) {
  const std::string number = std::to_string(line.number());
  return &file == &seenFrom ? "line " + number : file.path + ":" + number;
}

}  // namespace zerva
