#include "host/check/RecordRules.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "host/check/NearMiss.h"
#include "host/check/Registries.h"

namespace zerva {
namespace {

/** The protocol of every proxy that is found through the registry. */
constexpr char proxyProtocol[] = "zerva_simple_rmi";

const std::vector<std::string>& protocols() {
  static const std::vector<std::string> names = {proxyProtocol, "zerva_svc_xml"};
  return names;
}

std::string withBlanks(std::string text) {
  std::replace(text.begin(), text.end(), ',', ' ');
  return text;
}

bool hasComma(const Word& word) { return word.text.find(',') != std::string::npos; }

void commaInField(const CheckSubject& subject, Findings& findings) {
  constexpr char refused[] = "the registry refuses to be told names that have a comma in them.";
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    for (std::size_t at = 0; line.isRecord() && at < 4; ++at) {
      if (!hasComma(line.field(at))) continue;
      findings.add(file, line, line.field(at),
                   "fields of a record are sent with commas between them: the registry refuses one "
                   "that has a comma in it.");
    }
    if (!line.isChannelService()) return;
    if (hasComma(line.channel())) findings.add(file, line, line.channel(), refused);
    for (const Word& word : line.interfaces()) {
      if (hasComma(word)) findings.add(file, line, word, refused, withBlanks(word.text));
    }
  });
}

/** Whether it is the same code for another protocol: the registry has one record for all of them.
 */
bool isSameProxy(const ParsedLine& line, const ParsedLine& other) {
  return line.keyword() == Keyword::ProxyInfo && line.library().text == other.library().text &&
         line.creator().text == other.creator().text &&
         line.protocol().text != other.protocol().text;
}

void recordTwice(const CheckSubject& subject, Findings& findings) {
  struct Place {
    const CheckedFile* file;
    const ParsedLine* line;
  };
  const Registries registries(subject);
  std::map<std::string, Place> latest;
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isRecord() || line.field(2).empty()) return;
    // What is lost takes nothing's place.
    if (registries.behind(file, line) != nullptr) return;
    const bool isProxy = line.keyword() == Keyword::ProxyInfo;
    const std::string key = isProxy ? "proxy " + line.field(2).text
                                    : "invoker " + line.field(2).text + " " + line.protocol().text;
    const auto [at, isNew] = latest.try_emplace(key, Place{&file, &line});
    const Place before = std::exchange(at->second, Place{&file, &line});
    if (isNew || isSameProxy(line, *before.line)) return;
    findings.add(file, line, line.field(2),
                 "this takes the place of the record of " +
                     placeOf(*before.file, *before.line, file) + " for the same " +
                     (isProxy ? "interface." : "interface and protocol."));
  });
}

void unknownProtocol(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isRecord() || line.protocol().empty()) return;
    const std::string& name = line.protocol().text;
    if (std::count(protocols().begin(), protocols().end(), name) != 0) return;
    findings.add(file, line, line.protocol(), "nobody speaks the protocol " + quoted(name) + ".",
                 nearMiss(name, protocols()));
  });
}

void proxyProtocolIgnored(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (line.keyword() != Keyword::ProxyInfo || line.protocol().text != protocols()[1]) return;
    findings.add(file, line, line.protocol(),
                 "the protocol of a proxy record is not read: every proxy speaks " +
                     std::string(proxyProtocol) + ".");
  });
}

/** The interfaces of records of one kind; of invokers only those that proxies can call. */
std::set<std::string> recorded(const CheckSubject& subject, Keyword keyword) {
  const Registries registries(subject);
  std::set<std::string> names;
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (line.keyword() != keyword || registries.behind(file, line) != nullptr) return;
    if (keyword == Keyword::InvokerInfo && line.protocol().text != proxyProtocol) return;
    names.insert(line.field(2).text);
  });
  return names;
}

void noProxyRecord(const CheckSubject& subject, Findings& findings) {
  const std::set<std::string> proxies = recorded(subject, Keyword::ProxyInfo);
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isChannelService()) return;
    for (const Word& word : line.interfaces()) {
      if (word.text == registryInterface || proxies.contains(word.text)) continue;
      findings.add(file, line, word,
                   "no proxy is recorded for " + quoted(word.text) +
                       ": whoever looks it up finds nothing, unless another process records one.");
    }
  });
}

void noInvokerRecord(const CheckSubject& subject, Findings& findings) {
  const std::set<std::string> proxies = recorded(subject, Keyword::ProxyInfo);
  const std::set<std::string> invokers = recorded(subject, Keyword::InvokerInfo);
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isChannelService()) return;
    for (const Word& word : line.interfaces()) {
      const bool called = word.text != registryInterface && proxies.contains(word.text);
      if (!called || invokers.contains(word.text)) continue;
      findings.add(file, line, word,
                   quoted(word.text) + " has a proxy, but no invoker for " + proxyProtocol +
                       " is recorded: calls to it fail.");
    }
  });
}

}  // namespace

const std::vector<Rule>& recordRules() {
  static const std::vector<Rule> rules = {
      {"comma-in-field", Severity::Error,
       "a comma in a record, or in a channel or interface that is announced", commaInField},
      {"record-twice", Severity::Warning, "a record in the place of an earlier one", recordTwice},
      {"unknown-protocol", Severity::Warning, "a protocol that nobody speaks", unknownProtocol},
      {"proxy-protocol", Severity::Note, "a proxy for a protocol that proxies do not speak",
       proxyProtocolIgnored},
      {"no-proxy-record", Severity::Note, "an interface without a proxy record", noProxyRecord},
      {"no-invoker-record", Severity::Warning,
       "an interface with a proxy record and without an invoker that could serve it",
       noInvokerRecord},
  };
  return rules;
}

}  // namespace zerva
