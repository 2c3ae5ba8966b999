#include "host/DirectiveFileCheck.h"

#include <algorithm>
#include <utility>

#include "host/check/ReadFile.h"
#include "host/check/StartRules.h"

namespace zerva {

std::vector<Finding> checkDirectiveFile(const std::string& path) {
  std::vector<Finding> findings;
  auto file = readCheckedFile(path);
  if (!file) return findings;
  CheckSubject subject;
  subject.files.push_back(std::move(*file));
  for (const Rule& rule : startRules()) apply(rule, subject, findings);
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& left, const Finding& right) {
    return left.line < right.line;
  });
  return findings;
}

std::string formatFinding(const Finding& finding) {
  return finding.file + ":" + std::to_string(finding.line) + ":" + std::to_string(finding.column) +
         ": " + severityName(finding.severity) + ": " + finding.text + " [" + finding.code + "]";
}

}  // namespace zerva
