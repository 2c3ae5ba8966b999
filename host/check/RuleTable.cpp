#include "host/check/RuleTable.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "host/check/FieldRules.h"
#include "host/check/FormatRules.h"
#include "host/check/LibraryRules.h"
#include "host/check/NameRules.h"
#include "host/check/ProgramRules.h"
#include "host/check/RecordRules.h"
#include "host/check/RegistryRules.h"
#include "host/check/StartRules.h"
#include "host/check/TraceRules.h"

namespace zerva {

std::vector<Rule> allRules() {
  std::vector<Rule> all;
  for (const auto* rules :
       {&startRules(), &formatRules(), &fieldRules(), &nameRules(), &registryRules(),
        &recordRules(), &libraryRules(), &programRules(), &traceRules()}) {
    all.insert(all.end(), rules->begin(), rules->end());
  }
  return all;
}

std::vector<Finding> lookOver(const CheckSubject& subject) {
  std::vector<Finding> findings;
  for (const Rule& rule : allRules()) apply(rule, subject, findings);
  std::map<std::string, std::size_t> order;
  for (const CheckedFile& file : subject.files) order.try_emplace(file.path, order.size());
  std::stable_sort(findings.begin(), findings.end(),
                   [&](const Finding& left, const Finding& right) {
                     const auto place = [&](const Finding& finding) {
                       return std::make_tuple(order[finding.file], finding.line, finding.column,
                                              finding.severity);
                     };
                     return place(left) < place(right);
                   });
  return findings;
}

std::string describeRules() {
  std::string text;
  for (const Rule& rule : allRules()) {
    std::string line = severityName(rule.severity);
    line.resize(9, ' ');
    line += rule.code;
    line.resize(std::max<std::size_t>(line.size() + 1, 34), ' ');
    text += line + rule.meaning + "\n";
  }
  return text;
}

}  // namespace zerva
