#include "host/explain/ExplainReport.h"

#include "host/check/CheckReport.h"
#include "host/explain/ExplanationSum.h"
#include "host/explain/Words.h"

namespace zerva {
namespace {

std::string placeOf(const FileExplanation& file, const LineExplanation& line) {
  return printable(file.path) + ":" + std::to_string(line.line->number()) + ": ";
}

std::string headed(const FileExplanation& file, const LineExplanation& line,
                   const std::string& text) {
  return placeOf(file, line) + printable(text) + ".\n";
}

/** Whether two lines that follow each other need but one sentence. */
bool isOneStory(const LineExplanation& first, const LineExplanation& next) {
  if (first.outcome != next.outcome || !first.findings.empty() || !next.findings.empty()) {
    return false;
  }
  return first.outcome == Outcome::Nothing || first.outcome == Outcome::NotRead;
}

/** What is said of several lines by the sentence for one of them. */
std::string titleOfAll(const LineExplanation& first, const LineExplanation& last) {
  const std::string lines = "lines " + std::to_string(first.line->number()) + " to " +
                            std::to_string(last.line->number());
  if (first.outcome == Outcome::Nothing) return lines + " are empty or comments";
  return lines + " are" + first.title.substr(first.title.find(' '));
}

std::string whole(const FileExplanation& file, const LineExplanation& line) {
  std::string text = headed(file, line, line.title);
  for (const std::string& step : line.steps) text += "    " + printable(step) + "\n";
  for (const Finding& finding : line.findings) {
    text += std::string("    ") + severityName(finding.severity) + ": " + printable(finding.text);
    if (!finding.suggestion.empty()) {
      text += " Did you mean '" + printable(finding.suggestion) + "'?";
    }
    text += " [" + finding.code + "]\n";
  }
  return text;
}

/** Adds to a list how many there are of something, unless there are none. */
void addCount(std::vector<std::string>& list, std::size_t number, const std::string& words) {
  if (number > 0) list.push_back(std::to_string(number) + " " + words);
}

std::string serviceWords(const ExplanationSum& sum) {
  std::vector<std::string> kinds;
  addCount(kinds, sum.immediate, "created at once");
  addCount(kinds, sum.lazy, "lazy");
  addCount(kinds, sum.legacy, "legacy");
  return counted(sum.services(), "service") + ": " + listed(kinds) + ". ";
}

std::string sumWords(const FileExplanation& file, const ExplanationSum& sum) {
  std::string text = sum.services() > 0 ? serviceWords(sum) : "No service comes up. ";
  if (sum.records > 0) text += counted(sum.records, "record") + ". ";
  if (sum.programs > 0) text += counted(sum.programs, "program") + ". ";
  text.back() = '\n';
  if (sum.failed > 0) {
    text += counted(sum.failed, "line") + (sum.failed == 1 ? " does not do what it asks for.\n"
                                                           : " do not do what they ask for.\n");
  }
  if (file.registryElsewhere) {
    text += std::string("No line brings up a registry: another process has to serve ") +
            registryChannelName + " before. `zerva run --await` waits for that.\n";
  }
  if (file.end != nullptr) {
    text += "All of this with --no-check only: `zerva run` starts nothing because of " +
            lineNumber(*file.end) + ".\n";
  }
  return text;
}

}  // namespace

std::string explanationAsText(const FileExplanation& file,
                              const std::vector<LineExplanation>& lines) {
  std::string text;
  for (std::size_t at = 0; at < lines.size(); ++at) {
    std::size_t last = at;
    while (last + 1 < lines.size() && isOneStory(lines[at], lines[last + 1])) ++last;
    text += last == at ? whole(file, lines[at])
                       : headed(file, lines[at], titleOfAll(lines[at], lines[last]));
    at = last;
  }
  if (lines.size() == file.lines.size()) text += sumWords(file, sumOf(lines));
  return text;
}

}  // namespace zerva
