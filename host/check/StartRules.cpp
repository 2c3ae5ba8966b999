#include "host/check/StartRules.h"

namespace zerva {
namespace {

void unreadableFile(const CheckSubject& subject, Findings& findings) {
  for (const CheckedFile& file : subject.files) {
    if (!file.unreadable.empty()) findings.addToFile(file, file.unreadable);
  }
}

void lineTooLong(const CheckSubject& subject, Findings& findings) {
  subject.forEachLineAtAll([&](const CheckedFile& file, const ParsedLine& line) {
    const std::size_t length = line.line().length;
    if (length <= longestDirectiveLine) return;
    findings.addAt(file, line, longestDirectiveLine + 1, length - longestDirectiveLine,
                   "the line has " + std::to_string(length) +
                       " characters, and reading it would never end: at most " +
                       std::to_string(longestDirectiveLine) +
                       " are allowed, a carriage return counted.");
  });
}

/** How many fields were written after the mode; the list is filled up with empty ones. */
std::size_t fieldsAfterMode(const ParsedLine& line) {
  std::size_t count = 0;
  for (std::size_t at = 2; at < line.words().size(); ++at)
    count += line.words()[at].empty() ? 0 : 1;
  return count;
}

void tooFewFields(const CheckSubject& subject, Findings& findings) {
  subject.forEachLineAtAll([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.breaksOff()) return;
    const Word& mode = line.words()[1];
    findings.add(file, line, mode,
                 "the mode field " + mode.text +
                     " needs at least four fields after it, and the line has " +
                     std::to_string(fieldsAfterMode(line)) + ": it would break the start off.");
  });
}

}  // namespace

const std::vector<Rule>& startRules() {
  static const std::vector<Rule> rules = {
      {"unreadable-file", Severity::Error,
       "not a regular file, or one that cannot be read to its end: the start hangs",
       unreadableFile},
      {"line-too-long", Severity::Error, "a line of more than 511 characters: the start hangs",
       lineTooLong},
      {"too-few-fields", Severity::Error,
       "MT or ST with fewer than four fields after it: the start ends there", tooFewFields},
  };
  return rules;
}

}  // namespace zerva
