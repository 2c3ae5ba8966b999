#pragma once

#include <string>
#include <vector>

#include "framework/Export.h"

class Executable;
class Threadable;

namespace zerva {

/**
 * Says, while it lives, what the calling thread waits for, so that a host that hangs can name it.
 */
class ZERVA_EXPORT Waiting {
 public:
  /** @param what a phrase that completes "waits for". */
  explicit Waiting(std::string what);
  ~Waiting();
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;

  /** @returns what the threads of the process wait for now, the wait that began first first. */
  static std::vector<std::string> all();

  /** Notes which executor was told last to shut down; its service's `stop` comes next. */
  static void noteShutdown(std::string executor);

  /** @returns what `noteShutdown` noted last; empty when nothing was. */
  static std::string lastShutdown();
};

/** @returns the object's type and the library that the type comes from; never throws for null. */
ZERVA_EXPORT std::string describe(const Executable* executable);

/** As above, for the body of a thread. */
ZERVA_EXPORT std::string describe(const Threadable* body);

}  // namespace zerva
