#pragma once

#include "host/check/CheckOptions.h"

namespace zerva {

/** With which code `zerva check` ends. The numbers are part of the command line's interface. */
enum class CheckExit : int {
  /** Nothing that fails was found. */
  Good = 0,
  /** Errors were found, or warnings where those fail too. */
  Bad = 1,
  /** It was not looked over, or not all of it, or what was found could not be told. */
  NotDone = 2,
};

/** @returns the part of the help that lists the codes, one a line. */
const char* describeCheckExits();

/** Looks directive files over, and tells what it found on standard output. */
CheckExit check(const CheckOptions& options);

}  // namespace zerva
