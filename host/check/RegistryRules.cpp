#include "host/check/RegistryRules.h"

#include <optional>

#include "host/check/NearMiss.h"
#include "host/check/Registries.h"

namespace zerva {
namespace {

std::string lineOf(const ParsedLine& line) { return "line " + std::to_string(line.number()); }

bool isOwnRecord(const ParsedLine& line) {
  return line.isRecord() && line.field(2).text == registryInterface;
}

void serviceBeforeRegistry(const CheckSubject& subject, Findings& findings) {
  const Registries registries(subject);
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    const ParsedLine* registry = registries.behind(file, line);
    if (registry == nullptr || !line.isChannelService() || line.interfaces().empty()) return;
    findings.add(file, line, line.words()[0],
                 "the registry comes up in " + lineOf(*registry) +
                     " only: this service is announced to nobody, and not again later.");
  });
}

void recordBeforeRegistry(const CheckSubject& subject, Findings& findings) {
  const Registries registries(subject);
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    const ParsedLine* registry = registries.behind(file, line);
    if (registry == nullptr || !line.isRecord()) return;
    findings.add(file, line, line.words()[0],
                 "the registry comes up in " + lineOf(*registry) + " only: this record is lost.");
  });
}

void registryRecord(const CheckSubject& subject, Findings& findings) {
  const Registries registries(subject);
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!isOwnRecord(line) || registries.behind(file, line) != nullptr) return;
    findings.add(file, line, line.field(2),
                 "the registry knows its own proxy and invoker from the start; this record takes "
                 "their place.");
  });
}

void registryNotAlone(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isChannelService() || isRegistry(line)) return;
    for (const Word& word : line.interfaces()) {
      if (word.text != registryInterface) continue;
      findings.add(file, line, word,
                   "a registry with another interface beside it is taken for an ordinary service: "
                   "it is looked for before it is there.");
      return;
    }
  });
}

bool servesRegistry(const ParsedLine& line) {
  for (const Word& word : line.interfaces()) {
    if (word.text == registryInterface) return true;
  }
  return false;
}

/** @returns what is probably meant to be the registry's interface, on its channel. */
std::optional<Word> misspeltRegistry(const ParsedLine& line) {
  if (servesRegistry(line) || line.channel().text != registryChannelName) return std::nullopt;
  for (const Word& word : line.interfaces()) {
    if (!nearInterface(word.text, {registryInterface}).empty()) return word;
  }
  return std::nullopt;
}

void registryChannel(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (!line.isService()) return;
    const std::string name = quoted(registryChannelName);
    if (line.keyword() == Keyword::ServiceLegacy) {
      if (!servesRegistry(line)) return;
      findings.add(file, line, line.words()[0],
                   "a legacy service has no channel, and the registry is asked on " + name + ".");
    } else if (const auto word = misspeltRegistry(line)) {
      findings.add(
          file, line, *word,
          "this channel is the registry's, and " + quoted(word->text) + " is not its interface.",
          registryInterface);
    } else if (servesRegistry(line) != (line.channel().text == registryChannelName) &&
               !line.channel().empty()) {
      findings.add(
          file, line, line.channel(),
          servesRegistry(line)
              ? "the registry is asked on " + name + ": on another channel nobody finds it."
              : "this channel is the registry's: whoever asks the registry asks this service.",
          servesRegistry(line) ? registryChannelName : "");
    }
  });
}

void noRegistry(const CheckSubject& subject, Findings& findings) {
  const CheckedFile* announcing = nullptr;
  bool found = false;
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    found = found || servesRegistry(line);
    const bool announces = line.isChannelService() || line.isRecord();
    if (announces && announcing == nullptr) announcing = &file;
  });
  if (found || announcing == nullptr) return;
  findings.addToFile(*announcing,
                     std::string("no line brings up a registry: another process has to serve ") +
                         quoted(registryChannelName) + " before this file is read.");
}

void heartbeatWithoutChannel(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (line.keyword() != Keyword::ServiceLegacy) return;
    for (const Word& word : line.interfaces()) {
      if (word.text.find("HeartbeatServiceIfc") == std::string::npos) continue;
      findings.add(file, line, word,
                   "a heartbeat is monitored under the name of its channel, and a legacy service "
                   "has none: it is not monitored.");
      return;
    }
  });
}

}  // namespace

const std::vector<Rule>& registryRules() {
  static const std::vector<Rule> rules = {
      {"service-before-registry", Severity::Warning,
       "a service that comes before the registry it would be announced to", serviceBeforeRegistry},
      {"record-before-registry", Severity::Error,
       "a record that comes before the registry it is for, that of the registry itself included",
       recordBeforeRegistry},
      {"registry-record", Severity::Note, "a record for the registry's own interface",
       registryRecord},
      {"registry-not-alone", Severity::Warning, "a registry that has another interface as well",
       registryNotAlone},
      {"registry-channel", Severity::Error,
       "a registry on another channel than its own, or another service on that", registryChannel},
      {"no-registry", Severity::Note, "no line brings up a registry", noRegistry},
      {"heartbeat-without-channel", Severity::Warning,
       "a heartbeat that is a legacy service, and so has no channel to be monitored by",
       heartbeatWithoutChannel},
  };
  return rules;
}

}  // namespace zerva
