#pragma once

#include <vector>

#include "host/check/Rule.h"

namespace zerva {

/** Programs that are started. */
const std::vector<Rule>& programRules();

}  // namespace zerva
