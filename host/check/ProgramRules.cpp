#include "host/check/ProgramRules.h"

#include <algorithm>

#include "host/check/NearMiss.h"
#include "host/check/ProgramSearch.h"

namespace zerva {
namespace {

bool startsProgram(const ParsedLine& line) { return line.keyword() == Keyword::StartProcess; }

/** The words that the program gets, itself first; a mode counts as one of them. */
std::vector<Word> argumentsOf(const ParsedLine& line) {
  std::vector<Word> arguments;
  for (std::size_t at = 1; at < line.words().size(); ++at) {
    if (!line.words()[at].empty()) arguments.push_back(line.words()[at]);
  }
  return arguments;
}

void emptyStartProcess(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!startsProgram(line) || !argumentsOf(line).empty()) return;
    findings.add(file, line, line.words()[0], "no program is named.");
  });
}

void modeAsProgram(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!startsProgram(line) || !line.hasMode()) return;
    findings.add(
        file, line, line.words()[1],
        "a program has no mode: one with the name " + line.words()[1].text + " is started.");
  });
}

void shellWords(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!startsProgram(line)) return;
    for (const Word& word : argumentsOf(line)) {
      const std::size_t at = word.text.find_first_of("\"'`$*|<>&;");
      if (at == std::string::npos && word.text[0] != '~') continue;
      findings.add(file, line, word,
                   "no shell is involved: the program gets " + quoted(word.text) +
                       " just as it stands here.");
      return;
    }
  });
}

void programNotFound(const CheckSubject& subject, Findings& findings) {
  if (subject.programs == nullptr) return;
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!startsProgram(line) || argumentsOf(line).empty()) return;
    const Word program = argumentsOf(line).front();
    const std::string why = subject.programs->whyNot(program.text);
    if (why.empty()) return;
    std::vector<std::string> names = subject.programs->names();
    std::sort(names.begin(), names.end());
    findings.add(file, line, program, "the program " + quoted(program.text) + " " + why + ".",
                 nearMiss(program.text, names));
  });
}

}  // namespace

const std::vector<Rule>& programRules() {
  static const std::vector<Rule> rules = {
      {"empty-start-process", Severity::Error, "a `start_process` line without a program",
       emptyStartProcess},
      {"mode-as-program", Severity::Warning, "MT or ST in the place of a program", modeAsProgram},
      {"shell-words", Severity::Warning, "an argument that only a shell would understand",
       shellWords},
      {"program-not-found", Severity::Error, "a program that is not there or cannot be executed",
       programNotFound},
  };
  return rules;
}

}  // namespace zerva
