#pragma once

#include <set>

namespace zerva {

/**
 * Tells which of the objects that one walk over a map comes across are new to it: a service stands
 * under each of its names, an invoker under each of its protocols, and is deleted once.
 */
class OnceEach {
 public:
  /** @returns whether the object is not null and was not asked for before. */
  bool isNew(const void* object) { return object != nullptr && seen_.insert(object).second; }

 private:
  std::set<const void*> seen_;
};

}  // namespace zerva
