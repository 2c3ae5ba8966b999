#include "tests/integration/ExpectedLines.h"

#include <array>
#include <cctype>
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

/** How far the patterns were matched at the best, for the message. */
struct Furthest {
  std::size_t pattern = 0;
  std::size_t line = 0;
};

bool agree(const std::vector<std::string>& patterns, std::size_t pattern,
           const std::vector<std::string>& lines, std::size_t line, Furthest& furthest) {
  for (; pattern < patterns.size(); ++pattern, ++line) {
    if (pattern >= furthest.pattern) furthest = {pattern, line};
    if (patterns[pattern] == anyLines) {
      for (std::size_t next = line; next <= lines.size(); ++next) {
        if (agree(patterns, pattern + 1, lines, next, furthest)) return true;
      }
      return false;
    }
    if (line == lines.size() || !matches(expand(patterns[pattern]), lines[line])) return false;
  }
  if (line < lines.size()) furthest = {pattern, line};
  return line == lines.size();
}

}  // namespace

std::string compareLines(const std::vector<std::string>& expected, const std::string& written) {
  const std::vector<std::string> lines = split(written);
  Furthest furthest;
  if (agree(expected, 0, lines, 0, furthest)) return {};
  std::ostringstream text;
  text << "expected line " << furthest.pattern + 1 << ": "
       << (furthest.pattern < expected.size() ? expected[furthest.pattern] : "(the end)") << "\n"
       << "written line " << furthest.line + 1 << ": "
       << (furthest.line < lines.size() ? lines[furthest.line] : "(the end)") << "\n"
       << "all that was written:\n"
       << written;
  return text.str();
}

}  // namespace zerva
