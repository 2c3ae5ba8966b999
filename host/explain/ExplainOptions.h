#pragma once

#include <string>

#include "host/check/CheckOptions.h"

namespace zerva {

/** What `zerva explain` was asked to do. */
struct ExplainOptions {
  /** The directive file. */
  std::string file;
  /** The number of a line, or a name; empty for all lines. */
  std::string wanted;
  /** Whether it is written for a program. */
  bool json = false;
  /** For which machine, and where that has its libraries. */
  CheckOptions target;
};

}  // namespace zerva
