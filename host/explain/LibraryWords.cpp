#include "host/explain/LibraryWords.h"

#include "host/check/LibraryUse.h"
#include "host/check/ParsedLine.h"

namespace zerva {
namespace {

bool opens(const LibraryUse& use) {
  return use.fault == LibraryFault::None && use.missing.empty() && use.undefined.empty();
}

}  // namespace

bool makes(const LibraryUse* use) {
  return use == nullptr || (opens(*use) && use->creator == CreatorFault::None);
}

std::string openingWords(const ParsedLine& line, const LibraryUse* use) {
  const std::string& creator = line.creator().text;
  if (use == nullptr) return "opens " + line.library().text + " and calls " + creator;
  if (use->fault == LibraryFault::NotFound) {
    return "looks for " + line.library().text + " and does not find it";
  }
  if (!opens(*use)) return "finds " + use->path + " and cannot open it";
  switch (use->creator) {
    case CreatorFault::NotFound:
      return "opens " + use->path + " and finds no " + creator + " in it";
    case CreatorFault::NotAFunction:
      return "opens " + use->path + " and calls " + creator +
             ", which is no function: that ends the process";
    case CreatorFault::None:
      break;
  }
  return "opens " + use->path + " and calls " + creator;
}

std::string openingLog(const LibraryUse* use) {
  if (makes(use)) return {};
  if (!opens(*use)) return "Error opening library";
  return use->creator == CreatorFault::NotFound ? "Error resolving symbol" : "";
}

}  // namespace zerva
