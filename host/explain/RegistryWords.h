#pragma once

#include <string>

namespace zerva {

struct RegistryAhead;

/** @returns the registry as the object of a sentence; nothing of use where it is not reached. */
std::string registryWords(const RegistryAhead& registry);

/** @returns why the registry is not reached, as the end of a sentence. */
std::string noRegistryWords(const RegistryAhead& registry);

}  // namespace zerva
