#include "host/check/CheckReport.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace zerva {
namespace {

/** As much of a line as is shown, and where the first character that is meant stands in that. */
constexpr std::size_t widestSource = 100;
constexpr std::size_t shownBefore = 60;

constexpr Severity severities[] = {Severity::Error, Severity::Warning, Severity::Note};

const char* colourOf(Severity severity) {
  switch (severity) {
    case Severity::Error:
      return "\033[31m";
    case Severity::Warning:
      return "\033[35m";
    case Severity::Note:
      break;
  }
  return "\033[36m";
}

std::string coloured(const std::string& text, const char* colour, ReportStyle style) {
  return style.colours ? colour + text + "\033[0m" : text;
}

bool isInsideCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

std::size_t columnsOf(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return !isInsideCharacter(c); }));
}

/** The line, and below it a mark at what is meant; only the part around it of a long line. */
std::string source(const Finding& finding, const std::string& line, ReportStyle style) {
  const std::size_t at = std::min(finding.column - 1, line.size());
  std::size_t begin = at > widestSource - 20 ? at - shownBefore : 0;
  while (begin > 0 && isInsideCharacter(line[begin])) --begin;
  std::size_t end = std::min(line.size(), begin + widestSource);
  while (end < line.size() && isInsideCharacter(line[end])) ++end;
  const std::string before = printable(line.substr(begin, at - begin));
  const std::size_t length = std::min(finding.length, end - std::min(at, end));
  const std::string meant = printable(line.substr(at, length));
  const std::string shown = printable(line.substr(begin, end - begin));
  const std::string dots = begin > 0 ? "..." : "";
  const std::size_t width = std::max<std::size_t>(columnsOf(meant), 1);
  return "    " + dots + shown + (end < line.size() ? "..." : "") + "\n    " +
         std::string(dots.size() + columnsOf(before), ' ') +
         coloured("^" + std::string(width - 1, '~'), colourOf(finding.severity), style) + "\n";
}

std::string countOf(std::size_t number, const char* what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

}  // namespace

ReportStyle styleOfStandardOutput() {
  const bool terminal = isatty(STDOUT_FILENO) == 1;
  const char* refused = std::getenv("NO_COLOR");
  return {terminal, terminal && (refused == nullptr || *refused == '\0')};
}

std::string printable(const std::string& text) {
  std::string result = text;
  for (std::size_t at = 0; at < result.size(); ++at) {
    const auto c = static_cast<unsigned char>(result[at]);
    const auto before = static_cast<unsigned char>(at == 0 ? 0 : result[at - 1]);
    // The second range is a byte of its own or, behind this byte, a character that controls.
    const bool controls = c < 0x20U || c == 0x7FU || (before == 0xC2U && c >= 0x80U && c < 0xA0U);
    if (c == '\t') {
      result[at] = ' ';
    } else if (controls) {
      result[at] = '?';
    }
  }
  return result;
}

std::size_t count(const std::vector<Finding>& findings, Severity severity) {
  return static_cast<std::size_t>(
      std::count_if(findings.begin(), findings.end(),
                    [severity](const Finding& finding) { return finding.severity == severity; }));
}

std::string reportAsText(const std::vector<Finding>& findings, const SourceLines& lines,
                         ReportStyle style) {
  std::string text;
  for (const Finding& finding : findings) {
    const std::string kind = severityName(finding.severity);
    text += printable(finding.file) + ":" + std::to_string(finding.line) + ":" +
            std::to_string(finding.column) + ": " +
            coloured(kind + ":", colourOf(finding.severity), style) + " " + printable(finding.text);
    if (!finding.suggestion.empty()) {
      text += " Did you mean '" + printable(finding.suggestion) + "'?";
    }
    text += " [" + finding.code + "]\n";
    const bool isOfFile = finding.column == 1 && finding.length == 0;
    const auto line = lines.find({finding.file, finding.line});
    if (style.carets && !isOfFile && line != lines.end())
      text += source(finding, line->second, style);
  }
  if (findings.empty()) return text;
  std::string sum;
  for (const Severity severity : severities) {
    const std::size_t number = count(findings, severity);
    if (number == 0) continue;
    sum += (sum.empty() ? "" : ", ") + countOf(number, severityName(severity));
  }
  return text + sum + "\n";
}

}  // namespace zerva
