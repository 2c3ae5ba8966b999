#include "host/check/TraceRules.h"

namespace zerva {
namespace {

void neverLookedUp(const CheckSubject& subject, Findings& findings) {
  if (!subject.lookedUp) return;
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isChannelService()) return;
    for (const Word& word : line.interfaces()) {
      if (word.text == registryInterface || subject.lookedUp->contains(word.text)) continue;
      findings.add(file, line, word,
                   "nobody looked up " + quoted(word.text) + " in the run that was traced.");
    }
  });
}

}  // namespace

const std::vector<Rule>& traceRules() {
  static const std::vector<Rule> rules = {
      {"never-looked-up", Severity::Note,
       "an interface that nobody looked up in the run that was traced", neverLookedUp},
  };
  return rules;
}

}  // namespace zerva
