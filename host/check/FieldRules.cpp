#include "host/check/FieldRules.h"

#include "host/check/NearMiss.h"

namespace zerva {
namespace {

bool endsIn(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/** A library's file name, with or without a version behind it. */
bool looksLikeLibrary(const std::string& text) {
  return endsIn(text, ".so") || text.find(".so.") != std::string::npos;
}

/** How many fields must not be empty, and what they are called. */
std::vector<std::string> requiredFields(const ParsedLine& line) {
  if (line.isChannelService()) return {"library", "creator", "channel"};
  if (line.keyword() == Keyword::ServiceLegacy) return {"library", "creator"};
  if (line.keyword() == Keyword::ProxyInfo) return {"library", "creator", "interface"};
  if (line.keyword() == Keyword::InvokerInfo) {
    return {"library", "creator", "interface", "protocol"};
  }
  return {};
}

/** @returns the name of the first field that is required and not there; empty when all are. */
std::string missing(const ParsedLine& line) {
  const auto required = requiredFields(line);
  for (std::size_t at = 0; at < required.size(); ++at) {
    if (line.field(at).empty()) return required[at];
  }
  return {};
}

void missingField(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    const std::string name = missing(line);
    if (name.empty()) return;
    const std::string consequence = line.isService()
                                        ? ": nothing is created, and only level 5 of the log tells."
                                        : ": the record is of no use to anybody.";
    findings.addAt(file, line, line.field(requiredFields(line).size()).column, 0,
                   "the " + name + " is missing" + consequence);
  });
}

void noInterface(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isService() || !missing(line).empty() || !line.interfaces().empty()) return;
    const Word& last = line.field(line.isChannelService() ? 2 : 1);
    const bool forgotten = line.isChannelService() && endsIn(last.text, "Ifc");
    findings.add(
        file, line, last,
        std::string("no interface is named: the service comes up, but is recorded nowhere, "
                    "so nobody finds it, and nobody tells it to stop.") +
            (forgotten ? " Here " + quoted(last.text) + " is the channel." : ""));
  });
}

/** @returns the mode that was meant by what now is the library; empty when none was. */
std::string meantMode(const ParsedLine& line) {
  if (!line.isService() || line.hasMode()) return {};
  const std::string small = lowered(line.words()[1].text);
  if (small == "mt") return "MT";
  return small == "st" ? "ST" : "";
}

void fieldsOutOfOrder(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isService() && !line.isRecord()) return;
    if (looksLikeLibrary(line.library().text) || !meantMode(line).empty()) return;
    for (std::size_t at = 1; at < line.words().size(); ++at) {
      const Word& word = line.words()[at];
      if (&word == &line.library() || !looksLikeLibrary(word.text)) continue;
      findings.add(file, line, word,
                   quoted(word.text) + " reads like a library, but the library of this line is " +
                       quoted(line.library().text) + ".");
      return;
    }
  });
}

void modeSpelling(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    const std::string meant = meantMode(line);
    if (meant.empty()) return;
    const Word& word = line.words()[1];
    findings.add(file, line, word,
                 quoted(word.text) +
                     " is no mode, so it is the library, and each field behind it "
                     "moves by one.",
                 meant);
  });
}

void legacyMode(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (line.keyword() != Keyword::ServiceLegacy || !line.hasMode()) return;
    findings.add(file, line, line.words()[1],
                 "a legacy service takes no mode: with one, its creator " +
                     quoted(line.creator().text) + " becomes its first interface.");
  });
}

void legacyChannel(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (line.keyword() != Keyword::ServiceLegacy) return;
    for (const Word& word : line.interfaces()) {
      if (word.text[0] != '/') continue;
      findings.add(file, line, word,
                   "a legacy service has no channel: " + quoted(word.text) +
                       " becomes one of its interfaces.");
    }
  });
}

void modeIgnored(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isRecord() || !line.hasMode()) return;
    findings.add(file, line, line.words()[1], "the mode of a record is ignored.");
  });
}

void ignoredWords(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    const Word& first = line.field(4);
    if (!line.isRecord() || first.empty()) return;
    const Word& last = line.words().back();
    findings.addAt(file, line, first.column, last.column + last.text.size() - first.column,
                   "what stands behind the protocol is ignored; a record is for one interface.");
  });
}

}  // namespace

const std::vector<Rule>& fieldRules() {
  static const std::vector<Rule> rules = {
      {"missing-field", Severity::Error,
       "a service or record without one of the fields that it cannot do without", missingField},
      {"no-interface", Severity::Warning, "a service that is recorded under no interface",
       noInterface},
      {"fields-out-of-order", Severity::Warning, "a library's name in the place of another field",
       fieldsOutOfOrder},
      {"mode-spelling", Severity::Warning,
       "a mode in small letters, which is taken for the library", modeSpelling},
      {"legacy-mode", Severity::Warning,
       "a legacy service with a mode, which makes its creator an interface", legacyMode},
      {"legacy-channel", Severity::Warning,
       "a legacy service with a channel, which becomes an interface", legacyChannel},
      {"mode-ignored", Severity::Note, "a record with a mode, which is ignored", modeIgnored},
      {"ignored-words", Severity::Warning, "words behind the protocol of a record", ignoredWords},
  };
  return rules;
}

}  // namespace zerva
