#pragma once

#include "host/explain/ExplainOptions.h"

namespace zerva {

/** With which code `zerva explain` ends. The numbers are part of the command line's interface. */
enum class ExplainExit : int {
  /** Each line that was explained does what it asks for. */
  Good = 0,
  /** One of them does not. */
  Bad = 1,
  /** There was nothing to explain. */
  NotDone = 2,
};

/** @returns the part of the help that lists the codes, one a line. */
const char* describeExplainExits();

/** Says on standard output what the lines of a directive file do. Starts nothing of it. */
ExplainExit explain(const ExplainOptions& options);

}  // namespace zerva
