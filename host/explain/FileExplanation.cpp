#include "host/explain/FileExplanation.h"

#include <algorithm>

#include "host/check/RuleTable.h"
#include "host/check/StartRules.h"
#include "host/explain/Outlook.h"
#include "host/explain/ProgramExplanation.h"
#include "host/explain/RecordExplanation.h"
#include "host/explain/ServiceExplanation.h"
#include "host/explain/SkippedExplanation.h"
#include "host/explain/Words.h"

namespace zerva {
namespace {

/** Whether reading goes on behind this line for ever, and is not broken off in it. */
bool hangs(const ParsedLine& line) {
  return line.line().length > longestDirectiveLine && !line.breaksOff();
}

/** The line that ends the start, or lets it hang. `zerva run` looks for these before it starts. */
LineExplanation explainEnd(const ParsedLine& line) {
  const std::string refused =
      "`zerva run` refuses the file because of this line, and starts nothing.";
  if (hangs(line)) {
    return {&line,
            Outcome::Failed,
            "hangs the start: it is too long",
            {refused, "With --no-check the first " + std::to_string(longestDirectiveLine) +
                          " characters are done as if they were a line; then an end of the file is "
                          "waited for that never comes."},
            {},
            {}};
  }
  return {&line,
          Outcome::Failed,
          "ends the start: " + line.words()[1].text + " needs four fields behind it",
          {refused,
           "With --no-check reading its fields throws an exception, and what has come up by "
           "then is taken down."},
          {},
          {}};
}

LineExplanation explainNotRead(const ParsedLine& line, const ParsedLine& end) {
  return {&line,
          Outcome::NotRead,
          "is not read: " + lineNumber(end) + (hangs(end) ? " hangs the start" : " ends the start"),
          {},
          {},
          {}};
}

LineExplanation explainLine(const ParsedLine& line, const Outlook& outlook) {
  if (!outlook.isRead(line)) return explainNotRead(line, *outlook.end());
  if (&line == outlook.end()) return explainEnd(line);
  if (line.isService()) return explainService(line, outlook);
  if (line.isRecord()) return explainRecord(line, outlook);
  if (line.keyword() == Keyword::StartProcess) return explainProgram(line, outlook);
  return explainSkipped(line);
}

/** Whether it is one of those because of which reading ends. */
bool isOfStart(const Finding& finding) {
  const auto& rules = startRules();
  return std::any_of(rules.begin(), rules.end(),
                     [&](const Rule& rule) { return finding.code == rule.code; });
}

void addFinding(FileExplanation& file, const Finding& finding) {
  const bool isOfFile = finding.column == 1 && finding.length == 0;
  if (finding.severity == Severity::Note || isOfFile) return;
  LineExplanation& line = file.lines[finding.line - 1];
  // Nothing else can go wrong in the line with which reading ends, and nothing in those behind it.
  if (line.outcome == Outcome::NotRead || (line.line == file.end && !isOfStart(finding))) return;
  if (finding.severity == Severity::Error) line.outcome = Outcome::Failed;
  line.findings.push_back(finding);
}

}  // namespace

const char* outcomeName(Outcome outcome) {
  switch (outcome) {
    case Outcome::Done:
      return "done";
    case Outcome::Nothing:
      return "nothing";
    case Outcome::Failed:
      return "failed";
    case Outcome::NotRead:
      break;
  }
  return "not_read";
}

FileExplanation explainFile(const CheckSubject& subject) {
  FileExplanation told;
  told.path = subject.files.front().path;
  const Outlook outlook(subject);
  told.end = outlook.end();
  for (const ParsedLine& line : subject.files.front().lines) {
    told.lines.push_back(explainLine(line, outlook));
    if (told.lines.back().outcome != Outcome::Done) continue;
    const bool tells = line.isChannelService() || line.isRecord();
    const bool elsewhere = tells && outlook.registryFor(line).line == nullptr;
    told.registryElsewhere = told.registryElsewhere || elsewhere;
  }
  for (const Finding& finding : lookOver(subject)) addFinding(told, finding);
  return told;
}

}  // namespace zerva
