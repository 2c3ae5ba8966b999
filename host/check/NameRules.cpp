#include "host/check/NameRules.h"

#include <functional>
#include <map>
#include <set>

#include "host/check/NearMiss.h"

namespace zerva {
namespace {

/** Where a name stands first. */
struct Place {
  const CheckedFile* file;
  const ParsedLine* line;
};

void channelTwice(const CheckSubject& subject, Findings& findings) {
  std::map<std::string, Place> first;
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    const Word& channel = line.channel();
    if (!line.isChannelService() || channel.empty()) return;
    const auto [at, isNew] = first.try_emplace(channel.text, Place{&file, &line});
    if (isNew) return;
    findings.add(file, line, channel,
                 "the channel " + quoted(channel.text) + " is that of " +
                     placeOf(*at->second.file, *at->second.line, file) +
                     " already: requests go to the older one, so this service never gets any.");
  });
}

void interfaceTwice(const CheckSubject& subject, Findings& findings) {
  std::map<std::string, Place> first;
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isChannelService()) return;
    for (const Word& word : line.interfaces()) {
      const auto [at, isNew] = first.try_emplace(word.text, Place{&file, &line});
      if (isNew || at->second.line == &line) continue;
      findings.add(file, line, word,
                   "the interface " + quoted(word.text) + " is announced by " +
                       placeOf(*at->second.file, *at->second.line, file) +
                       " already: that one is given out as long as it is served.");
    }
  });
}

void interfaceRepeated(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isService()) return;
    std::set<std::string> seen;
    for (const Word& word : line.interfaces()) {
      if (seen.insert(word.text).second) continue;
      findings.add(file, line, word,
                   "the interface " + quoted(word.text) +
                       " stands twice in this line: the service is told to stop twice.");
    }
  });
}

/** Names of one kind: by their small letters, each with how it was written first. */
class Spellings {
 public:
  Spellings(const char* kind, Findings& findings) : kind_(kind), findings_(findings) {}

  void look(const CheckedFile& file, const ParsedLine& line, const Word& word) {
    if (word.empty() || !seen_.insert(word.text).second) return;
    const auto [at, isNew] =
        first_.try_emplace(lowered(word.text), Spelling{word.text, Place{&file, &line}});
    if (isNew) return;
    findings_.add(file, line, word,
                  std::string("the ") + kind_ + " " + quoted(word.text) +
                      " differs only in capital letters from that of " +
                      placeOf(*at->second.place.file, *at->second.place.line, file) + ".",
                  at->second.text);
  }

 private:
  struct Spelling {
    std::string text;
    Place place;
  };
  const char* kind_;
  Findings& findings_;
  std::set<std::string> seen_;
  std::map<std::string, Spelling> first_;
};

void differsInCase(const CheckSubject& subject, Findings& findings) {
  Spellings libraries("library", findings);
  // Two libraries may have what they like.
  std::map<std::string, Spellings> creators;
  Spellings channels("channel", findings);
  Spellings interfaces("interface", findings);
  Spellings programs("program", findings);
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    const bool starts = line.keyword() == Keyword::StartProcess && line.words().size() > 1;
    if (starts) programs.look(file, line, line.words()[1]);
    if (!line.isService() && !line.isRecord()) return;
    libraries.look(file, line, line.library());
    creators.try_emplace(line.library().text, "creator", findings)
        .first->second.look(file, line, line.creator());
    if (line.isChannelService()) channels.look(file, line, line.channel());
    for (const Word& word : line.interfaces()) interfaces.look(file, line, word);
  });
}

std::set<std::string> interfacesOf(const CheckSubject& subject,
                                   const std::function<bool(const ParsedLine&)>& isMeant) {
  std::set<std::string> names;
  subject.forEachLine([&](const CheckedFile&, const ParsedLine& line) {
    if (!isMeant(line)) return;
    for (const Word& word : line.interfaces()) names.insert(word.text);
  });
  return names;
}

/** Records of one kind for interfaces that nobody has, next to ones that have none of that kind. */
void unknownInterfaceOf(Keyword kind, const CheckSubject& subject, Findings& findings) {
  const auto isOfKind = [kind](const ParsedLine& line) { return line.keyword() == kind; };
  const std::set<std::string> announced =
      interfacesOf(subject, [](const ParsedLine& line) { return line.isChannelService(); });
  const std::set<std::string> recorded = interfacesOf(subject, isOfKind);
  std::vector<std::string> unrecorded;
  for (const std::string& name : announced) {
    if (!recorded.contains(name)) unrecorded.push_back(name);
  }
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!isOfKind(line)) return;
    for (const Word& word : line.interfaces()) {
      if (announced.contains(word.text) || word.text == registryInterface) continue;
      const std::string meant = nearInterface(word.text, unrecorded);
      // A matter of capital letters only is told by the rule for those.
      if (meant.empty() || lowered(meant) == lowered(word.text)) continue;
      findings.add(file, line, word,
                   "no service here has the interface " + quoted(word.text) + ", and " +
                       quoted(meant) + " has no " +
                       (kind == Keyword::ProxyInfo ? "proxy" : "invoker") + " record.",
                   meant);
    }
  });
}

void unknownInterface(const CheckSubject& subject, Findings& findings) {
  unknownInterfaceOf(Keyword::ProxyInfo, subject, findings);
  unknownInterfaceOf(Keyword::InvokerInfo, subject, findings);
}

}  // namespace

const std::vector<Rule>& nameRules() {
  static const std::vector<Rule> rules = {
      {"channel-twice", Severity::Error, "a channel that an earlier line has opened already",
       channelTwice},
      {"interface-twice", Severity::Warning, "an interface that an earlier line announces already",
       interfaceTwice},
      {"interface-repeated", Severity::Warning, "an interface that stands twice in one line",
       interfaceRepeated},
      {"differs-in-case", Severity::Warning,
       "a name that differs from another one only in capital letters", differsInCase},
      {"unknown-interface", Severity::Warning,
       "a record for an interface that nobody has, next to one without such a record",
       unknownInterface},
  };
  return rules;
}

}  // namespace zerva
