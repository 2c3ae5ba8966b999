#pragma once

#include <cerrno>

#include "tests/faults/Fault.h"

// A function of the program that stands before one of the system's. It is given the linker's name,
// since headers may give the same function another one.
#define ZERVA_FAULTY(linkName) __asm__(linkName) __attribute__((visibility("default")))

namespace zerva::fault {

/** Calls the system's function, unless this call is to fail. */
template <typename Result, typename... Arguments>
Result callOr(Kind kind, int error, const char* name, Arguments... arguments) {
  if (hits(kind)) {
    errno = error;
    return static_cast<Result>(-1);
  }
  return reinterpret_cast<Result (*)(Arguments...)>(systems(name))(arguments...);
}

}  // namespace zerva::fault
