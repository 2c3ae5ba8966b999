#pragma once

#include <vector>

#include "host/check/Rule.h"

namespace zerva {

/** Traps in the way in which a line is cut. */
const std::vector<Rule>& formatRules();

}  // namespace zerva
