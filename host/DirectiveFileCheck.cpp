#include "host/DirectiveFileCheck.h"

#include <sys/stat.h>

#include <fstream>

#include "host/DirectiveLines.h"

namespace zerva {
namespace {

/** The keyword, the mode and the four fields that are read whatever the keyword is. */
constexpr std::size_t tokensWithMode = 6;

std::string kindOfFile(mode_t mode) {
  if (S_ISDIR(mode)) return "a directory";
  if (S_ISFIFO(mode)) return "a pipe";
  if (S_ISSOCK(mode)) return "a socket";
  return "a device";
}

void checkLength(const std::string& path, const DirectiveLine& line,
                 std::vector<Finding>& findings) {
  if (line.length <= longestDirectiveLine) return;
  findings.push_back({path, line.number, longestDirectiveLine + 1,
                      "the line has " + std::to_string(line.length) +
                          " characters, and reading it would never end: at most " +
                          std::to_string(longestDirectiveLine) +
                          " are allowed, a carriage return counted."});
}

bool hasMode(const DirectiveLine& line) {
  return line.tokens.size() > 1 && line.tokens[0] != "comment" &&
         (line.tokens[1] == "MT" || line.tokens[1] == "ST");
}

/** How many fields were written after the mode; the list is filled up with empty ones. */
std::size_t fieldsAfterMode(const DirectiveLine& line) {
  std::size_t count = 0;
  for (std::size_t at = 2; at < line.tokens.size(); ++at) count += line.tokens[at].empty() ? 0 : 1;
  return count;
}

/** Where the first field stands in the line as written. */
std::size_t columnOfFirstField(const std::string& text) {
  return text.find_first_not_of(" \t\v\f\n", text.find(':') + 1) + 1;
}

void checkMode(const std::string& path, const DirectiveLine& line, std::vector<Finding>& findings) {
  if (!hasMode(line) || line.tokens.size() >= tokensWithMode) return;
  findings.push_back({path, line.number, columnOfFirstField(line.text),
                      "the mode field " + line.tokens[1] +
                          " needs at least four fields after it, and the line has " +
                          std::to_string(fieldsAfterMode(line)) +
                          ": it would break the start off."});
}

}  // namespace

std::vector<Finding> checkDirectiveFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {};
  if (!S_ISREG(status.st_mode)) {
    return {{path, 1, 1,
             "this is " + kindOfFile(status.st_mode) + "; only a regular file can be read."}};
  }
  std::vector<Finding> findings;
  const auto lines = readDirectiveLines(path);
  if (!lines && std::ifstream(path)) {
    return {{path, 1, 1, "it can be opened but not read, and reading it would never end."}};
  }
  for (const DirectiveLine& line : lines.value_or(std::vector<DirectiveLine>())) {
    checkLength(path, line, findings);
    checkMode(path, line, findings);
  }
  return findings;
}

std::string formatFinding(const Finding& finding) {
  return finding.file + ":" + std::to_string(finding.line) + ":" + std::to_string(finding.column) +
         ": error: " + finding.text;
}

}  // namespace zerva
