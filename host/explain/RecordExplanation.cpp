#include "host/explain/RecordExplanation.h"

#include "host/check/LibraryUse.h"
#include "host/explain/LibraryWords.h"
#include "host/explain/Outlook.h"
#include "host/explain/RegistryWords.h"
#include "host/explain/Words.h"

namespace zerva {
namespace {

const Word& interfaceOf(const ParsedLine& line) { return line.field(2); }

bool isProxy(const ParsedLine& line) { return line.keyword() == Keyword::ProxyInfo; }

/** @returns the first field that the record is of no use without; empty when all are there. */
std::string missingIn(const ParsedLine& line) {
  if (line.library().empty()) return "library";
  if (line.creator().empty()) return "creator";
  if (interfaceOf(line).empty()) return "interface";
  return !isProxy(line) && line.protocol().empty() ? "protocol" : "";
}

std::string whatItIs(const ParsedLine& line) {
  if (isProxy(line)) return "the proxy for " + interfaceOf(line).text;
  return "the invoker for " + interfaceOf(line).text + " in " + line.protocol().text;
}

/** Who opens the library, and when. */
std::string usedWhen(const ParsedLine& line, const LibraryUse* use) {
  const std::string& name = interfaceOf(line).text;
  const std::string who = isProxy(line) ? "a process looks " + name + " up for the first time, it "
                                        : "the first call in " + line.protocol().text +
                                              " comes to a service with " + name + ", its process ";
  return "Opens nothing now. When " + who + openingWords(line, use) + ".";
}

/** What goes to the registry, and how. */
std::string toldHow(const ParsedLine& line, const RegistryAhead& registry) {
  if (interfaceOf(line).text != registryInterface) {
    return "Tells it to " + registryWords(registry) + ".";
  }
  const std::string sent = std::string("Sends the record as a text to ") + registryChannelName +
                           ", and waits for nobody";
  // The configurator's own way with the two records.
  return isProxy(line) ? sent + "; then tells it to " + registryWords(registry) + " too."
                       : sent + ".";
}

void fail(LineExplanation& told, const std::string& title, const std::string& step) {
  told.outcome = Outcome::Failed;
  told.title = title;
  told.steps = {step};
}

}  // namespace

LineExplanation explainRecord(const ParsedLine& line, const Outlook& outlook) {
  LineExplanation told;
  told.line = &line;
  const LibraryUse* use = outlook.libraryOf(line);
  if (use != nullptr) told.path = use->path;
  const RegistryAhead registry = outlook.registryFor(line);
  const std::string missing = missingIn(line);
  if (!registry.isReached()) {
    fail(told, "records nothing: " + noRegistryWords(registry),
         "The record is lost, and not told again later. An error in the log tells: \"cannot get "
         "svcRegistry interface!\".");
  } else if (isRefused(line)) {
    fail(told, "records nothing: one of its fields has a comma in it",
         "Tells it to " + registryWords(registry) + ", which refuses it.");
  } else if (!missing.empty()) {
    fail(told, "records what nobody can use: the " + missing + " is missing",
         "Tells what there is to " + registryWords(registry) + ". Nobody complains.");
  } else {
    told.title = "records where " + whatItIs(line) + " is";
    if (!makes(use)) told.outcome = Outcome::Failed;
    told.steps = {toldHow(line, registry), usedWhen(line, use)};
  }
  return told;
}

}  // namespace zerva
