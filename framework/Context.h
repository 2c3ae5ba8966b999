#pragma once

#include <string>

#include "framework/Export.h"

class Executable;

/**
 * The part of a run-time context that everything in a process shares: finding others by name.
 */
class ZERVA_EXPORT Context {
 public:
  /**
   * Finds what is known under a name. May block while a registry is asked.
   *
   * @param name the name, an interface's name in the case of services.
   * @returns the object, not owned by the caller, or null when nothing is known under the name.
   */
  virtual Executable* findExecutable(std::string& name) = 0;

 protected:
  ~Context() = default;
};
