#include "host/explain/ServiceExplanation.h"

#include "host/check/LibraryUse.h"
#include "host/explain/LibraryWords.h"
#include "host/explain/Outlook.h"
#include "host/explain/RegistryWords.h"
#include "host/explain/Words.h"

namespace zerva {
namespace {

constexpr char heartbeat[] = "HeartbeatServiceIfc";

bool isLazy(const ParsedLine& line) { return line.keyword() == Keyword::ServiceInfo; }

bool isLegacy(const ParsedLine& line) { return line.keyword() == Keyword::ServiceLegacy; }

/** @returns the first field without which nothing is created; empty when all are there. */
std::string missingIn(const ParsedLine& line) {
  if (line.library().empty()) return "library";
  if (line.creator().empty()) return "creator";
  return line.isChannelService() && line.channel().empty() ? "channel" : "";
}

std::string errorInParameters(const ParsedLine& line) {
  const std::string what = isLegacy(line) ? "Legacy Service" : "Service Info";
  return "Only level 5 of the log tells: \"Creating " +
         (line.keyword() == Keyword::ServiceInstance ? "Service Instance" : what) +
         ". Error in parameters.\".";
}

/** The service by its names, as the object of a sentence. */
std::string service(const ParsedLine& line) {
  const std::string kind = isLazy(line)     ? "lazy service"
                           : isLegacy(line) ? "legacy service"
                                            : "service";
  const auto names = textsOf(line.interfaces());
  return "the " + kind + " " + (names.empty() ? "that has no interface" : listed(names));
}

std::string channelStep(const ParsedLine& line) {
  const bool single = line.hasMode() && line.words()[1].text == "ST";
  return "Makes the channel " + line.channel().text + ". " +
         (line.hasMode() ? "" : "No mode is given, so ") +
         (single ? "ST: requests run one after the other, on a thread of its own."
                 : "MT: requests run beside each other, on the pool of the process.");
}

std::string announcementStep(const ParsedLine& line, const Outlook& outlook) {
  const auto names = textsOf(line.interfaces());
  if (names.empty()) return "Announces nothing, since it has no interface.";
  const RegistryAhead registry = outlook.registryFor(line);
  if (!registry.isReached()) {
    return "Announces " + listed(names) + " to nobody, now or later: " + noRegistryWords(registry) +
           ". An error in the log tells: \"cannot get svcRegistry interface!\".";
  }
  return "Announces " + listed(names) + (isLazy(line) ? " now to " : " before init to ") +
         registryWords(registry) +
         (isRefused(line) ? ", which refuses it: a name has a comma in it." : ".");
}

/** @param beginning of the sentence. */
std::string monitoringStep(const std::string& beginning, const ParsedLine& line) {
  return beginning + " put under monitoring as " + line.channel().text + ", since " + heartbeat +
         " is in its interfaces.";
}

/** How the service is called, for each of its interfaces. */
void tellCallers(LineExplanation& told, const Outlook& outlook) {
  std::vector<std::string> unknown;
  for (const Word& word : told.line->interfaces()) {
    if (word.text == registryInterface) continue;
    const ParsedLine* proxy = outlook.proxyOf(word.text);
    const ParsedLine* invoker = outlook.invokerOf(word.text);
    if (proxy == nullptr) {
      unknown.push_back(word.text);
      continue;
    }
    told.steps.push_back(word.text + " is called with the proxy of " + lineNumber(*proxy) +
                         " and " +
                         (invoker == nullptr ? "an invoker that no line here records."
                                             : "the invoker of " + lineNumber(*invoker) + "."));
  }
  if (unknown.empty()) return;
  told.steps.push_back("No line here records a proxy for " + listed(unknown) +
                       ": whoever looks it up finds nothing, unless another process records one.");
}

void fail(LineExplanation& told, const std::string& step, const std::string& log) {
  told.outcome = Outcome::Failed;
  told.steps.push_back(step);
  if (!log.empty()) {
    told.steps.push_back("The log and standard output tell: \"" + log + "\".");
  }
}

/** Opens the library now. @returns whether there is a service then. */
bool create(LineExplanation& told, const LibraryUse* use) {
  const std::string opening = capitalised(openingWords(*told.line, use)) + ".";
  told.title = (makes(use) ? "creates " : "does not create ") + service(*told.line);
  if (!makes(use)) {
    fail(told, opening, openingLog(use));
    return false;
  }
  told.title += " now";
  told.steps.push_back(opening);
  return true;
}

constexpr char initStep[] = "Calls init. The next line is not read before that has returned.";

void explainInstance(LineExplanation& told, const Outlook& outlook) {
  const ParsedLine& line = *told.line;
  if (!create(told, outlook.libraryOf(line))) return;
  told.steps.push_back(channelStep(line));
  if (!isRegistry(line)) told.steps.push_back(announcementStep(line, outlook));
  told.steps.emplace_back(initStep);
  if (isRegistry(line)) told.steps.emplace_back("Announces itself: it is the registry.");
  if (line.interfaceList().find(heartbeat) != std::string::npos) {
    told.steps.push_back(monitoringStep("Is", line));
  }
  told.steps.emplace_back("Starts its executor: what was sent to it until then is served now.");
  tellCallers(told, outlook);
}

void explainLazy(LineExplanation& told, const Outlook& outlook) {
  const ParsedLine& line = *told.line;
  const LibraryUse* use = outlook.libraryOf(line);
  told.title = "prepares " + service(line);
  told.steps.push_back(channelStep(line));
  told.steps.emplace_back("Starts its executor, which has no service yet.");
  if (!isRegistry(line)) told.steps.push_back(announcementStep(line, outlook));
  std::string later =
      "When the first message comes, the executor's thread " + openingWords(line, use);
  if (makes(use)) {
    told.steps.push_back(later + ", and then init. The message waits for that.");
    if (isRegistry(line)) told.steps.emplace_back("Then it announces itself: it is the registry.");
    if (line.interfaceList().find(heartbeat) != std::string::npos) {
      told.steps.push_back(monitoringStep("Then it is", line));
    }
  } else {
    const bool survives = use->creator != CreatorFault::NotAFunction;
    fail(told,
         later + (survives ? ". The sender gets an error, and the next message tries again." : "."),
         openingLog(use));
  }
  tellCallers(told, outlook);
}

void explainLegacy(LineExplanation& told, const Outlook& outlook) {
  if (!create(told, outlook.libraryOf(*told.line))) return;
  told.steps.emplace_back("It has no channel and is announced to nobody, so no proxy reaches it.");
  told.steps.emplace_back(initStep);
  told.steps.emplace_back(
      "Starts a thread of its own for it. Nobody tells it to stop: it has to see by itself that "
      "the "
      "process ends.");
}

}  // namespace

LineExplanation explainService(const ParsedLine& line, const Outlook& outlook) {
  LineExplanation told;
  told.line = &line;
  const LibraryUse* use = outlook.libraryOf(line);
  if (use != nullptr) told.path = use->path;
  const std::string missing = missingIn(line);
  if (!missing.empty()) {
    told.outcome = Outcome::Failed;
    told.title = "creates nothing: the " + missing + " is missing";
    told.steps = {errorInParameters(line)};
  } else if (isLegacy(line)) {
    explainLegacy(told, outlook);
  } else if (isLazy(line)) {
    explainLazy(told, outlook);
  } else {
    explainInstance(told, outlook);
  }
  return told;
}

}  // namespace zerva
