#pragma once

#include <vector>

#include "host/check/Rule.h"

namespace zerva {

/** What a run showed; says nothing when no run was seen. */
const std::vector<Rule>& traceRules();

}  // namespace zerva
