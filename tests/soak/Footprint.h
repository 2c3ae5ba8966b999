#pragma once

#include <cstddef>
#include <string>

namespace zerva {

/** What a process holds of the machine. */
struct Footprint {
  /**
   * Bytes that were allocated and not freed; 0 under a sanitizer, which has its own allocator, and
   * for another process.
   */
  std::size_t heap;
  /** Bytes of memory that are really there. */
  std::size_t resident;
  std::size_t descriptors;
  std::size_t threads;
  std::size_t mappings;
};

/** Looks at this process now. Reads /proc; any thread. */
Footprint measureFootprint();

/** Looks at another process of this user now. */
Footprint measureFootprintOf(int process);

/** @returns how many entries a directory has. */
std::size_t entriesOf(const std::string& directory);

/** @returns one line for people. */
std::string describe(const Footprint& footprint);

}  // namespace zerva
