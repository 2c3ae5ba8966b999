#pragma once

#include <cstddef>
#include <string>

namespace zerva {

/** What this process holds of the machine. */
struct Footprint {
  /** Bytes that were allocated and not freed; 0 under a sanitizer, which has its own allocator. */
  std::size_t heap;
  /** Bytes of memory that are really there. */
  std::size_t resident;
  std::size_t descriptors;
  std::size_t threads;
  std::size_t mappings;
};

/** Looks now. Reads /proc; any thread. */
Footprint measureFootprint();

/** @returns one line for people. */
std::string describe(const Footprint& footprint);

}  // namespace zerva
