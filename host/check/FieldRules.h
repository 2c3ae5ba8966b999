#pragma once

#include <vector>

#include "host/check/Rule.h"

namespace zerva {

/** Fields that are missing, too many, or in the wrong place. */
const std::vector<Rule>& fieldRules();

}  // namespace zerva
