#include "host/explain/SkippedExplanation.h"

namespace zerva {
namespace {

bool isBlank(const std::string& text) {
  return text.find_first_not_of(" \t\n\v\f\r") == std::string::npos;
}

}  // namespace

LineExplanation explainSkipped(const ParsedLine& line) {
  if (line.keyword() == Keyword::Unknown) {
    return {&line,
            Outcome::Failed,
            "is skipped: nobody knows its keyword",
            {"An error in the log shows it as it is written: \"invalid directive received\"."},
            {},
            {}};
  }
  if (!line.line().tokens.empty()) return {&line, Outcome::Nothing, "is a comment", {}, {}, {}};
  if (isBlank(line.text())) return {&line, Outcome::Nothing, "is empty", {}, {}, {}};
  return {&line,
          Outcome::Failed,
          "is skipped: it has no colon",
          {"Nobody is told, not even the log."},
          {},
          {}};
}

}  // namespace zerva
