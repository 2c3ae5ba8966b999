#include "host/explain/ExplanationSum.h"

namespace zerva {
namespace {

void countKind(ExplanationSum& sum, const ParsedLine& line) {
  sum.immediate += line.keyword() == Keyword::ServiceInstance ? 1U : 0U;
  sum.lazy += line.keyword() == Keyword::ServiceInfo ? 1U : 0U;
  sum.legacy += line.keyword() == Keyword::ServiceLegacy ? 1U : 0U;
  sum.records += line.isRecord() ? 1U : 0U;
  sum.programs += line.keyword() == Keyword::StartProcess ? 1U : 0U;
}

}  // namespace

ExplanationSum sumOf(const std::vector<LineExplanation>& lines) {
  ExplanationSum sum;
  for (const LineExplanation& line : lines) {
    if (line.outcome == Outcome::Done) countKind(sum, *line.line);
    sum.failed += line.outcome == Outcome::Failed ? 1U : 0U;
    const bool asks = line.line->keyword() != Keyword::None;
    sum.notRead += line.outcome == Outcome::NotRead && asks ? 1U : 0U;
  }
  return sum;
}

}  // namespace zerva
