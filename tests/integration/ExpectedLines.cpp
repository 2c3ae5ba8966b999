#include "tests/integration/ExpectedLines.h"

#include <array>
#include <cctype>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

namespace zerva {
namespace {

constexpr std::string_view anyLines = "...";

std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string expand(std::string pattern) {
  const std::array<std::pair<std::string_view, std::string_view>, 2> shortForms = {
      {{"<error>", "<time> error    [Service Config] src/ServiceConfigurator:<number>"},
       {"<time>", "<number>-<number>-<number> <number>:<number>:<number>.<number>"}}};
  for (const auto& [name, meaning] : shortForms) {
    for (std::size_t at; (at = pattern.find(name)) != std::string::npos;) {
      pattern.replace(at, name.size(), meaning);
    }
  }
  return pattern;
}

bool matches(std::string_view pattern, std::string_view line) {
  constexpr std::string_view number = "<number>";
  constexpr std::string_view any = "<any>";
  while (!pattern.empty()) {
    if (pattern.starts_with(number)) {
      std::size_t digits = 0;
      while (digits < line.size() && std::isdigit(static_cast<unsigned char>(line[digits])) != 0) {
        ++digits;
      }
      if (digits == 0) return false;
      pattern.remove_prefix(number.size());
      line.remove_prefix(digits);
    } else if (pattern.starts_with(any)) {
      pattern.remove_prefix(any.size());
      for (std::size_t skipped = 0; skipped <= line.size(); ++skipped) {
        if (matches(pattern, line.substr(skipped))) return true;
      }
      return false;
    } else {
      if (line.empty() || line.front() != pattern.front()) return false;
      pattern.remove_prefix(1);
      line.remove_prefix(1);
    }
  }
  return line.empty();
}

/** Where the two part: how far the patterns were matched at the best. */
struct Parting {
  std::size_t pattern = 0;
  std::size_t line = 0;
};

/**
 * Matches from the first line on. What stands behind dots is taken where it comes first: that
 * leaves the most for the rest, so only the last dots ever need to reach further.
 */
std::optional<Parting> compare(const std::vector<std::string>& patterns,
                               const std::vector<std::string>& lines) {
  Parting furthest;
  Parting now;
  std::optional<Parting> afterDots;
  while (now.line < lines.size() || now.pattern < patterns.size()) {
    if (now.pattern >= furthest.pattern) furthest = now;
    if (now.pattern < patterns.size() && patterns[now.pattern] == anyLines) {
      ++now.pattern;
      afterDots = now;
    } else if (now.pattern < patterns.size() && now.line < lines.size() &&
               matches(patterns[now.pattern], lines[now.line])) {
      ++now.pattern;
      ++now.line;
    } else if (afterDots && afterDots->line < lines.size()) {
      ++afterDots->line;
      now = *afterDots;
    } else {
      return furthest;
    }
  }
  return std::nullopt;
}

/** The same lines with any others between them. */
std::vector<std::string> apart(const std::vector<std::string>& lines) {
  std::vector<std::string> all{std::string(anyLines)};
  for (const std::string& line : lines) {
    all.push_back(line);
    all.emplace_back(anyLines);
  }
  return all;
}

std::vector<std::string> expanded(const std::vector<std::string>& lines) {
  std::vector<std::string> all;
  for (const std::string& line : lines) all.push_back(expand(line));
  return all;
}

}  // namespace

std::string compareLines(const std::vector<std::string>& expected, const std::string& written) {
  const std::vector<std::string> lines = split(written);
  const std::optional<Parting> parting = compare(expanded(expected), lines);
  if (!parting) return {};
  std::ostringstream text;
  text << "expected line " << parting->pattern + 1 << ": "
       << (parting->pattern < expected.size() ? expected[parting->pattern] : "(the end)") << "\n"
       << "written line " << parting->line + 1 << ": "
       << (parting->line < lines.size() ? lines[parting->line] : "(the end)") << "\n"
       << "all that was written:\n"
       << written;
  return text.str();
}

std::string lookForLines(const std::vector<std::string>& expected, const std::string& written) {
  const std::vector<std::string> patterns = apart(expected);
  const std::optional<Parting> parting = compare(expanded(patterns), split(written));
  if (!parting) return {};
  return "missing: " + patterns[parting->pattern] + "\nall that was written:\n" + written;
}

}  // namespace zerva
