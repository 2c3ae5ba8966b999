#pragma once

#include <cstddef>
#include <type_traits>

namespace zerva {

/**
 * Calls an operation by its place in an object's table of virtual operations, as a library does
 * that was compiled long ago.
 *
 * On both word sizes an operation is called like a function whose first parameter is the object.
 *
 * @tparam Result what the operation returns.
 * @tparam Arguments the operation's parameters, by value or by reference as it declares them.
 * @param object what a pointer to the interface points to.
 * @param slot the place, counted from 0.
 */
template <class Result, class... Arguments>
Result callSlot(void* object, std::size_t slot, std::type_identity_t<Arguments>... arguments) {
  using Operation = Result (*)(void*, Arguments...);
  void** table = *static_cast<void***>(object);
  return reinterpret_cast<Operation>(table[slot])(object, static_cast<Arguments&&>(arguments)...);
}

/**
 * A class with a virtual destructor has two operations for it, side by side: the first destroys an
 * object where it is, the second frees its memory too.
 */
inline void destroyThroughSlot(void* object, std::size_t slot) { callSlot<void>(object, slot); }

}  // namespace zerva
