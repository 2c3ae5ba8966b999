#pragma once

#include <string>

#include "framework/Export.h"

class Executable;
class Threadable;

namespace zerva {

/**
 * Remembers what an object is, for people: its type and the library that the type comes from.
 *
 * It is made for each thread and each service, and its text is wanted of few: so it only copies
 * what it needs, and the type's name is written out when somebody asks. The object and its library
 * may be gone then.
 */
class ZERVA_EXPORT Description {
 public:
  /** @param object lives; null describes nothing. */
  explicit Description(const Executable* object);
  explicit Description(const Threadable* object);

  /** @returns the type as it is written in a source, and its library. */
  std::string text() const;

 private:
  std::string type_;  // as the linker has it; empty for nothing
  std::string library_;
};

/** @returns the object's type and the library that the type comes from; never throws for null. */
ZERVA_EXPORT std::string describe(const Executable* executable);

/** As above, for the body of a thread. */
ZERVA_EXPORT std::string describe(const Threadable* body);

}  // namespace zerva
