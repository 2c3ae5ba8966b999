#pragma once

#include <cstddef>
#include <cstring>

namespace zerva {

/**
 * A pointer to an operation of a class, taken apart. The platform's binary interface: what it holds
 * first is the address of the code, or, for a virtual operation, 1 more than the offset in the
 * table. No code begins at an odd address.
 */
template <class Operation>
std::ptrdiff_t firstWordOf(Operation operation) {
  static_assert(sizeof operation == 2 * sizeof(std::ptrdiff_t));
  std::ptrdiff_t word = 0;
  std::memcpy(&word, &operation, sizeof word);
  return word;
}

/** @returns whether an operation is called through the table of its object. */
template <class Operation>
bool isVirtual(Operation operation) {
  return (firstWordOf(operation) & 1) != 0;
}

/** @returns at which place of its class's table a virtual operation stands, from 0 on. */
template <class Operation>
std::ptrdiff_t slotOf(Operation operation) {
  return (firstWordOf(operation) - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

}  // namespace zerva
