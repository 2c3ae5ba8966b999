#pragma once

#include <vector>

#include "host/check/Rule.h"

namespace zerva {

/** Names that collide, or that nearly do. */
const std::vector<Rule>& nameRules();

}  // namespace zerva
