#include "host/explain/RegistryWords.h"

#include "host/explain/Outlook.h"
#include "host/explain/Words.h"

namespace zerva {

std::string registryWords(const RegistryAhead& registry) {
  if (registry.where == RegistryAhead::Where::Here) {
    return "the registry (" + lineNumber(*registry.line) + ")";
  }
  return "the registry of another process, which has to be there by then";
}

std::string noRegistryWords(const RegistryAhead& registry) {
  if (registry.where == RegistryAhead::Where::Later) {
    return "the registry comes in " + lineNumber(*registry.line) + " only";
  }
  return "the registry of " + lineNumber(*registry.line) + " does not come up";
}

}  // namespace zerva
