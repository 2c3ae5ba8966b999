#pragma once

#include <vector>

#include "host/check/Rule.h"

namespace zerva {

/** Where the code for calls of an interface is, and whether all of it is said. */
const std::vector<Rule>& recordRules();

}  // namespace zerva
