#pragma once

#include <vector>

#include "host/check/Rule.h"

namespace zerva {

/** What would hang a start or end it half way; the only rules for which `run` refuses a file. */
const std::vector<Rule>& startRules();

}  // namespace zerva
