#pragma once

#include <cstddef>

namespace zerva::bench {

/** @returns the resident bytes of this process, those of the copied libraries left out. */
std::size_t residentBytes();

/** @returns how many mappings of copied libraries this process has. */
std::size_t mappedCopies();

/** @returns how many threads this process has. */
std::size_t threads();

}  // namespace zerva::bench
