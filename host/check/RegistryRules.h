#pragma once

#include <vector>

#include "host/check/Rule.h"

namespace zerva {

/** The registry itself, and what has to come after it. */
const std::vector<Rule>& registryRules();

}  // namespace zerva
