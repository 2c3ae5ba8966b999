#pragma once

namespace zerva {

/**
 * Calls a creator function that a library exports.
 *
 * @tparam Product what it creates: `Service`, `Proxy` or `Invoker`.
 * @param address what resolving its name gave.
 * @returns a new object, or null when the creator gives none.
 * @throws anything. The library must then stay open: the exception's type may live in it.
 */
template <class Product>
Product* callCreator(void* address) {
  using Creator = Product* (*)();
  return reinterpret_cast<Creator>(address)();
}

}  // namespace zerva
