#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/check/ElfFile.h"

namespace zerva {

/** Where the loader of a machine looks for libraries that nobody says a directory for. */
struct LoaderPlaces {
  /** What its cache has, by name; in the cache's order. */
  std::multimap<std::string, std::string> cached;
  /** Its directories, the first one first. */
  std::vector<std::string> directories;
};

/**
 * @param root the machine's tree; empty for this machine.
 * @param kind the machine's.
 */
LoaderPlaces readLoaderPlaces(const std::string& root, const ElfKind& kind);

/**
 * @param bytes the loader's cache, which is not trusted.
 * @returns what is in it; nothing when it is none.
 */
std::multimap<std::string, std::string> readLoaderCache(const std::string& bytes);

}  // namespace zerva
